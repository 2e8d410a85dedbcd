* Ship goods from four plants to twelve towns at least cost. Supply and demand in tonnes, cost in euro a tonne.
NAME          transport
ROWS
 N  cost
 L  cap_lyon
 L  cap_porto
 L  cap_turin
 L  cap_graz
 G  dem_bern
 G  dem_bonn
 G  dem_brno
 G  dem_cork
 G  dem_gent
 G  dem_kiel
 G  dem_lodz
 G  dem_nice
 G  dem_oulu
 G  dem_riga
 G  dem_sofia
 G  dem_ulm
COLUMNS
    lyon_bern     cost             4.9
    lyon_bern     cap_lyon           1   dem_bern           1
    lyon_bonn     cost             6.2
    lyon_bonn     cap_lyon           1   dem_bonn           1
    lyon_brno     cost            15.1
    lyon_brno     cap_lyon           1   dem_brno           1
    lyon_cork     cost            14.7
    lyon_cork     cap_lyon           1   dem_cork           1
    lyon_gent     cost             5.7
    lyon_gent     cap_lyon           1   dem_gent           1
    lyon_kiel     cost            10.1
    lyon_kiel     cap_lyon           1   dem_kiel           1
    lyon_lodz     cost             6.3
    lyon_lodz     cap_lyon           1   dem_lodz           1
    lyon_nice     cost            18.1
    lyon_nice     cap_lyon           1   dem_nice           1
    lyon_oulu     cost            14.8
    lyon_oulu     cap_lyon           1   dem_oulu           1
    lyon_riga     cost             5.5
    lyon_riga     cap_lyon           1   dem_riga           1
    lyon_sofia    cost            18.4
    lyon_sofia    cap_lyon           1   dem_sofia          1
    lyon_ulm      cost             7.1
    lyon_ulm      cap_lyon           1   dem_ulm            1
    porto_bern    cost             9.7
    porto_bern    cap_porto          1   dem_bern           1
    porto_bonn    cost            20.1
    porto_bonn    cap_porto          1   dem_bonn           1
    porto_brno    cost            20.0
    porto_brno    cap_porto          1   dem_brno           1
    porto_cork    cost            18.9
    porto_cork    cap_porto          1   dem_cork           1
    porto_gent    cost             5.5
    porto_gent    cap_porto          1   dem_gent           1
    porto_kiel    cost            18.7
    porto_kiel    cap_porto          1   dem_kiel           1
    porto_lodz    cost            18.9
    porto_lodz    cap_porto          1   dem_lodz           1
    porto_nice    cost            14.1
    porto_nice    cap_porto          1   dem_nice           1
    porto_oulu    cost             5.2
    porto_oulu    cap_porto          1   dem_oulu           1
    porto_riga    cost             9.6
    porto_riga    cap_porto          1   dem_riga           1
    porto_sofia   cost             5.1
    porto_sofia   cap_porto          1   dem_sofia          1
    porto_ulm     cost            18.2
    porto_ulm     cap_porto          1   dem_ulm            1
    turin_bern    cost             7.4
    turin_bern    cap_turin          1   dem_bern           1
    turin_bonn    cost            11.4
    turin_bonn    cap_turin          1   dem_bonn           1
    turin_brno    cost            14.7
    turin_brno    cap_turin          1   dem_brno           1
    turin_cork    cost             7.6
    turin_cork    cap_turin          1   dem_cork           1
    turin_gent    cost            17.8
    turin_gent    cap_turin          1   dem_gent           1
    turin_kiel    cost             7.0
    turin_kiel    cap_turin          1   dem_kiel           1
    turin_lodz    cost            18.6
    turin_lodz    cap_turin          1   dem_lodz           1
    turin_nice    cost            11.8
    turin_nice    cap_turin          1   dem_nice           1
    turin_oulu    cost            18.3
    turin_oulu    cap_turin          1   dem_oulu           1
    turin_riga    cost            21.4
    turin_riga    cap_turin          1   dem_riga           1
    turin_sofia   cost             8.6
    turin_sofia   cap_turin          1   dem_sofia          1
    turin_ulm     cost             6.6
    turin_ulm     cap_turin          1   dem_ulm            1
    graz_bern     cost            18.8
    graz_bern     cap_graz           1   dem_bern           1
    graz_bonn     cost            18.6
    graz_bonn     cap_graz           1   dem_bonn           1
    graz_brno     cost            20.3
    graz_brno     cap_graz           1   dem_brno           1
    graz_cork     cost             8.8
    graz_cork     cap_graz           1   dem_cork           1
    graz_gent     cost            13.5
    graz_gent     cap_graz           1   dem_gent           1
    graz_kiel     cost             6.4
    graz_kiel     cap_graz           1   dem_kiel           1
    graz_lodz     cost            18.0
    graz_lodz     cap_graz           1   dem_lodz           1
    graz_nice     cost            22.2
    graz_nice     cap_graz           1   dem_nice           1
    graz_oulu     cost             5.6
    graz_oulu     cap_graz           1   dem_oulu           1
    graz_riga     cost            18.4
    graz_riga     cap_graz           1   dem_riga           1
    graz_sofia    cost             5.5
    graz_sofia    cap_graz           1   dem_sofia          1
    graz_ulm      cost            19.8
    graz_ulm      cap_graz           1   dem_ulm            1
RHS
    rhs           cap_lyon         330
    rhs           cap_porto        350
    rhs           cap_turin        340
    rhs           cap_graz         240
    rhs           dem_bern         110
    rhs           dem_bonn          80
    rhs           dem_brno         120
    rhs           dem_cork          65
    rhs           dem_gent          70
    rhs           dem_kiel         145
    rhs           dem_lodz          75
    rhs           dem_nice         115
    rhs           dem_oulu         150
    rhs           dem_riga          65
    rhs           dem_sofia        140
    rhs           dem_ulm           90
BOUNDS
 UP bnd           turin_bern        50
 UP bnd           lyon_nice         70
 UP bnd           graz_brno         45
 UP bnd           porto_cork        90
ENDATA
