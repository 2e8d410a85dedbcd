"""Types of the package. Descriptions are in the docstrings of the extension module."""

import io
import os
import types
from collections.abc import Callable, Collection, Iterable, Iterator, Mapping, Sequence
from typing import (
    Any,
    ClassVar,
    Final,
    Literal,
    NoReturn,
    SupportsFloat,
    SupportsIndex,
    SupportsInt,
    TypeAlias,
    TypeVar,
    overload,
)

import numpy as np
import numpy.typing as npt

_T = TypeVar("_T")
_K = TypeVar("_K")
_EnvT = TypeVar("_EnvT", bound="Env")

_ParamValue = SupportsInt | SupportsFloat | str | bytes | os.PathLike[str]
_ParamInfo = (
    tuple[str, type[int], int, int, int, int]
    | tuple[str, type[float], float, float, float, float]
    | tuple[str, type[str], str, str, str, str]
)

_FileName: TypeAlias = str | os.PathLike[str]

__version__: str

ZVNStringIO = io.StringIO

class ZelvanError(Exception):
    errno: int
    message: str
    def __init__(self, errno: int, argument: object) -> None: ...
    def __reduce__(self) -> tuple[Any, ...]: ...
    def _get_message(self) -> str: ...
    def _set_message(self, message: str, /) -> None: ...

class Env:
    @property
    def _cenv(self) -> object: ...
    @property
    def _default(self) -> bool: ...
    @property
    def _empty(self) -> bool: ...
    @property
    def _user(self) -> bool: ...
    def __init__(
        self,
        logfilename: _FileName | bytes = "",
        empty: bool = False,
        params: Mapping[str, _ParamValue] | None = None,
        cenv: object = None,
        isDefault: bool = False,
    ) -> None: ...
    def start(self: _EnvT) -> _EnvT: ...
    def dispose(self) -> None: ...
    def close(self) -> None: ...
    def __enter__(self: _EnvT) -> _EnvT: ...
    def __exit__(
        self,
        exc_type: type[BaseException] | None,
        exc_value: BaseException | None,
        traceback: types.TracebackType | None,
        /,
    ) -> Literal[False]: ...
    def __del__(self) -> None: ...
    def setParam(self, paramname: str, newval: _ParamValue) -> None: ...
    def fixTuneParam(self, paramname: str) -> None: ...
    def resetParams(self) -> None: ...
    def readParams(self, filename: _FileName) -> None: ...
    def writeParams(self, filename: _FileName) -> None: ...
    def _message(self, msg: str, /) -> None: ...
    def _getCommStats(self) -> dict[str, float]: ...
    def _paramlist(self, paramname: str, /) -> list[str]: ...
    def _getParamInfo(self, paramname: str, /) -> tuple[Any, ...] | None: ...

class ParamClass:
    # made by make_stub.py: ParamClass
    BarIterLimit: int
    Cutoff: float
    IterationLimit: float
    MemLimit: float
    NodeLimit: float
    SoftMemLimit: float
    SolutionLimit: int
    TimeLimit: float
    WorkLimit: float
    BestObjStop: float
    BestBdStop: float
    BarConvTol: float
    BarQCPConvTol: float
    FeasibilityTol: float
    IntFeasTol: float
    MarkowitzTol: float
    MIPGap: float
    MIPGapAbs: float
    OptimalityTol: float
    PSDTol: float
    InfUnbdInfo: int
    LPWarmStart: int
    NetworkAlg: int
    NormAdjust: int
    ObjScale: float
    PerturbValue: float
    Quad: int
    ScaleFlag: int
    Sifting: int
    SiftMethod: int
    SimplexPricing: int
    BarCorrectors: int
    BarHomogeneous: int
    BarOrder: int
    Crossover: int
    CrossoverBasis: int
    QCPDual: int
    BranchDir: int
    DegenMoves: int
    ConcurrentJobs: int
    ConcurrentMIP: int
    Disconnected: int
    DistributedMIPJobs: int
    Heuristics: float
    ImproveStartGap: float
    ImproveStartNodes: float
    ImproveStartTime: float
    MinRelNodes: int
    MIPFocus: int
    MIQCPMethod: int
    NLPHeur: int
    NodefileDir: str
    NodefileStart: float
    NodeMethod: int
    NonConvex: int
    NoRelHeurTime: float
    NoRelHeurWork: float
    OBBT: int
    PartitionPlace: int
    PumpPasses: int
    RINS: int
    SolFiles: str
    SolutionNumber: int
    SubMIPNodes: int
    Symmetry: int
    VarBranch: int
    ZeroObjNodes: int
    TuneCriterion: int
    TuneJobs: int
    TuneMetric: int
    TuneOutput: int
    TuneResults: int
    TuneTimeLimit: float
    TuneTrials: int
    TuneCleanup: float
    TuneTargetMIPGap: float
    TuneTargetTime: float
    PoolSearchMode: int
    PoolSolutions: int
    PoolGap: float
    PoolGapAbs: float
    BQPCuts: int
    Cuts: int
    CliqueCuts: int
    CoverCuts: int
    FlowCoverCuts: int
    FlowPathCuts: int
    GUBCoverCuts: int
    ImpliedCuts: int
    InfProofCuts: int
    MIPSepCuts: int
    MIRCuts: int
    ModKCuts: int
    NetworkCuts: int
    ProjImpliedCuts: int
    PSDCuts: int
    LiftProjectCuts: int
    RelaxLiftCuts: int
    RLTCuts: int
    StrongCGCuts: int
    SubMIPCuts: int
    ZeroHalfCuts: int
    CutAggPasses: int
    CutPasses: int
    GomoryPasses: int
    WorkerPassword: str
    WorkerPool: str
    ComputeServer: str
    ServerPassword: str
    ServerTimeout: int
    CSRouter: str
    CSGroup: str
    CSPriority: int
    CSQueueTimeout: float
    CSTLSInsecure: int
    CSAppName: str
    CSClientLog: int
    CSIdleTimeout: int
    CloudAccessID: str
    CloudSecretKey: str
    CloudPool: str
    CloudHost: str
    JobID: str
    CSAPIAccessID: str
    CSAPISecret: str
    CSAuthToken: str
    CSBatchMode: int
    CSManager: str
    UserName: str
    AggFill: int
    Aggregate: int
    DisplayInterval: int
    DualReductions: int
    FeasRelaxBigM: float
    FuncPieceError: float
    FuncPieceLength: float
    FuncPieceRatio: float
    FuncPieces: int
    FuncMaxVal: float
    IISMethod: int
    IntegralityFocus: int
    JSONSolDetail: int
    LazyConstraints: int
    LogFile: str
    LogToConsole: int
    Method: int
    NumericFocus: int
    MultiObjMethod: int
    MultiObjPre: int
    IgnoreNames: int
    ObjNumber: int
    OutputFlag: int
    PreCrush: int
    PreDepRow: int
    PreDual: int
    PrePasses: int
    PreQLinearize: int
    Presolve: int
    PreSOS1BigM: float
    PreSOS1Encoding: int
    PreSOS2BigM: float
    PreSOS2Encoding: int
    PreSparsify: int
    PreMIQCPForm: int
    Record: int
    ResultFile: str
    ScenarioNumber: int
    Seed: int
    StartNodeLimit: int
    StartNumber: int
    Threads: int
    UpdateMode: int
    # end
    def __init__(self, env: Env) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def _getChangeList(self) -> str: ...

class AttrConstClass:
    # made by make_stub.py: AttrConstClass
    NumConstrs: ClassVar[Literal["NumConstrs"]]
    NumVars: ClassVar[Literal["NumVars"]]
    NumSOS: ClassVar[Literal["NumSOS"]]
    NumQConstrs: ClassVar[Literal["NumQConstrs"]]
    NumGenConstrs: ClassVar[Literal["NumGenConstrs"]]
    NumNZs: ClassVar[Literal["NumNZs"]]
    DNumNZs: ClassVar[Literal["DNumNZs"]]
    NumQNZs: ClassVar[Literal["NumQNZs"]]
    NumQCNZs: ClassVar[Literal["NumQCNZs"]]
    NumIntVars: ClassVar[Literal["NumIntVars"]]
    NumBinVars: ClassVar[Literal["NumBinVars"]]
    NumPWLObjVars: ClassVar[Literal["NumPWLObjVars"]]
    ModelName: ClassVar[Literal["ModelName"]]
    ModelSense: ClassVar[Literal["ModelSense"]]
    ObjCon: ClassVar[Literal["ObjCon"]]
    IsMIP: ClassVar[Literal["IsMIP"]]
    IsQP: ClassVar[Literal["IsQP"]]
    IsQCP: ClassVar[Literal["IsQCP"]]
    IsMultiObj: ClassVar[Literal["IsMultiObj"]]
    IISMinimal: ClassVar[Literal["IISMinimal"]]
    Kappa: ClassVar[Literal["Kappa"]]
    KappaExact: ClassVar[Literal["KappaExact"]]
    MaxCoeff: ClassVar[Literal["MaxCoeff"]]
    MinCoeff: ClassVar[Literal["MinCoeff"]]
    MaxBound: ClassVar[Literal["MaxBound"]]
    MinBound: ClassVar[Literal["MinBound"]]
    MaxObjCoeff: ClassVar[Literal["MaxObjCoeff"]]
    MinObjCoeff: ClassVar[Literal["MinObjCoeff"]]
    MaxRHS: ClassVar[Literal["MaxRHS"]]
    MinRHS: ClassVar[Literal["MinRHS"]]
    MaxQCRHS: ClassVar[Literal["MaxQCRHS"]]
    MinQCRHS: ClassVar[Literal["MinQCRHS"]]
    MaxQCCoeff: ClassVar[Literal["MaxQCCoeff"]]
    MinQCCoeff: ClassVar[Literal["MinQCCoeff"]]
    MaxQCLCoeff: ClassVar[Literal["MaxQCLCoeff"]]
    MinQCLCoeff: ClassVar[Literal["MinQCLCoeff"]]
    MaxQObjCoeff: ClassVar[Literal["MaxQObjCoeff"]]
    MinQObjCoeff: ClassVar[Literal["MinQObjCoeff"]]
    ObjVal: ClassVar[Literal["ObjVal"]]
    ObjBound: ClassVar[Literal["ObjBound"]]
    ObjBoundC: ClassVar[Literal["ObjBoundC"]]
    PoolObjBound: ClassVar[Literal["PoolObjBound"]]
    PoolObjVal: ClassVar[Literal["PoolObjVal"]]
    MIPGap: ClassVar[Literal["MIPGap"]]
    Runtime: ClassVar[Literal["Runtime"]]
    Work: ClassVar[Literal["Work"]]
    Status: ClassVar[Literal["Status"]]
    SolCount: ClassVar[Literal["SolCount"]]
    IterCount: ClassVar[Literal["IterCount"]]
    NodeCount: ClassVar[Literal["NodeCount"]]
    BarIterCount: ClassVar[Literal["BarIterCount"]]
    FarkasProof: ClassVar[Literal["FarkasProof"]]
    NumStart: ClassVar[Literal["NumStart"]]
    TuneResultCount: ClassVar[Literal["TuneResultCount"]]
    Fingerprint: ClassVar[Literal["Fingerprint"]]
    ConcurrentWinMethod: ClassVar[Literal["ConcurrentWinMethod"]]
    LB: ClassVar[Literal["LB"]]
    UB: ClassVar[Literal["UB"]]
    Obj: ClassVar[Literal["Obj"]]
    VType: ClassVar[Literal["VType"]]
    VarName: ClassVar[Literal["VarName"]]
    X: ClassVar[Literal["X"]]
    RC: ClassVar[Literal["RC"]]
    Xn: ClassVar[Literal["Xn"]]
    BarX: ClassVar[Literal["BarX"]]
    Start: ClassVar[Literal["Start"]]
    VarHintVal: ClassVar[Literal["VarHintVal"]]
    VarHintPri: ClassVar[Literal["VarHintPri"]]
    BranchPriority: ClassVar[Literal["BranchPriority"]]
    Partition: ClassVar[Literal["Partition"]]
    VBasis: ClassVar[Literal["VBasis"]]
    PWLObjCvx: ClassVar[Literal["PWLObjCvx"]]
    PoolIgnore: ClassVar[Literal["PoolIgnore"]]
    IISLB: ClassVar[Literal["IISLB"]]
    IISUB: ClassVar[Literal["IISUB"]]
    IISLBForce: ClassVar[Literal["IISLBForce"]]
    IISUBForce: ClassVar[Literal["IISUBForce"]]
    SAObjLow: ClassVar[Literal["SAObjLow"]]
    SAObjUp: ClassVar[Literal["SAObjUp"]]
    SALBLow: ClassVar[Literal["SALBLow"]]
    SALBUp: ClassVar[Literal["SALBUp"]]
    SAUBLow: ClassVar[Literal["SAUBLow"]]
    SAUBUp: ClassVar[Literal["SAUBUp"]]
    UnbdRay: ClassVar[Literal["UnbdRay"]]
    PStart: ClassVar[Literal["PStart"]]
    PreFixVal: ClassVar[Literal["PreFixVal"]]
    VarPreStat: ClassVar[Literal["VarPreStat"]]
    VTag: ClassVar[Literal["VTag"]]
    Sense: ClassVar[Literal["Sense"]]
    RHS: ClassVar[Literal["RHS"]]
    ConstrName: ClassVar[Literal["ConstrName"]]
    Pi: ClassVar[Literal["Pi"]]
    Slack: ClassVar[Literal["Slack"]]
    CBasis: ClassVar[Literal["CBasis"]]
    IISConstr: ClassVar[Literal["IISConstr"]]
    IISConstrForce: ClassVar[Literal["IISConstrForce"]]
    SARHSLow: ClassVar[Literal["SARHSLow"]]
    SARHSUp: ClassVar[Literal["SARHSUp"]]
    FarkasDual: ClassVar[Literal["FarkasDual"]]
    DStart: ClassVar[Literal["DStart"]]
    Lazy: ClassVar[Literal["Lazy"]]
    CTag: ClassVar[Literal["CTag"]]
    IISSOS: ClassVar[Literal["IISSOS"]]
    IISSOSForce: ClassVar[Literal["IISSOSForce"]]
    QCSense: ClassVar[Literal["QCSense"]]
    QCRHS: ClassVar[Literal["QCRHS"]]
    QCName: ClassVar[Literal["QCName"]]
    IISQConstr: ClassVar[Literal["IISQConstr"]]
    IISQConstrForce: ClassVar[Literal["IISQConstrForce"]]
    QCPi: ClassVar[Literal["QCPi"]]
    QCSlack: ClassVar[Literal["QCSlack"]]
    QCTag: ClassVar[Literal["QCTag"]]
    GenConstrType: ClassVar[Literal["GenConstrType"]]
    GenConstrName: ClassVar[Literal["GenConstrName"]]
    IISGenConstr: ClassVar[Literal["IISGenConstr"]]
    IISGenConstrForce: ClassVar[Literal["IISGenConstrForce"]]
    FuncPieceError: ClassVar[Literal["FuncPieceError"]]
    FuncPieceLength: ClassVar[Literal["FuncPieceLength"]]
    FuncPieceRatio: ClassVar[Literal["FuncPieceRatio"]]
    FuncPieces: ClassVar[Literal["FuncPieces"]]
    MaxVio: ClassVar[Literal["MaxVio"]]
    BoundVio: ClassVar[Literal["BoundVio"]]
    BoundSVio: ClassVar[Literal["BoundSVio"]]
    BoundVioIndex: ClassVar[Literal["BoundVioIndex"]]
    BoundSVioIndex: ClassVar[Literal["BoundSVioIndex"]]
    BoundVioSum: ClassVar[Literal["BoundVioSum"]]
    BoundSVioSum: ClassVar[Literal["BoundSVioSum"]]
    ConstrVio: ClassVar[Literal["ConstrVio"]]
    ConstrSVio: ClassVar[Literal["ConstrSVio"]]
    ConstrVioIndex: ClassVar[Literal["ConstrVioIndex"]]
    ConstrSVioIndex: ClassVar[Literal["ConstrSVioIndex"]]
    ConstrVioSum: ClassVar[Literal["ConstrVioSum"]]
    ConstrSVioSum: ClassVar[Literal["ConstrSVioSum"]]
    ConstrResidual: ClassVar[Literal["ConstrResidual"]]
    ConstrSResidual: ClassVar[Literal["ConstrSResidual"]]
    ConstrResidualIndex: ClassVar[Literal["ConstrResidualIndex"]]
    ConstrSResidualIndex: ClassVar[Literal["ConstrSResidualIndex"]]
    ConstrResidualSum: ClassVar[Literal["ConstrResidualSum"]]
    ConstrSResidualSum: ClassVar[Literal["ConstrSResidualSum"]]
    DualVio: ClassVar[Literal["DualVio"]]
    DualSVio: ClassVar[Literal["DualSVio"]]
    DualVioIndex: ClassVar[Literal["DualVioIndex"]]
    DualSVioIndex: ClassVar[Literal["DualSVioIndex"]]
    DualVioSum: ClassVar[Literal["DualVioSum"]]
    DualSVioSum: ClassVar[Literal["DualSVioSum"]]
    DualResidual: ClassVar[Literal["DualResidual"]]
    DualSResidual: ClassVar[Literal["DualSResidual"]]
    DualResidualIndex: ClassVar[Literal["DualResidualIndex"]]
    DualSResidualIndex: ClassVar[Literal["DualSResidualIndex"]]
    DualResidualSum: ClassVar[Literal["DualResidualSum"]]
    DualSResidualSum: ClassVar[Literal["DualSResidualSum"]]
    ComplVio: ClassVar[Literal["ComplVio"]]
    ComplVioIndex: ClassVar[Literal["ComplVioIndex"]]
    ComplVioSum: ClassVar[Literal["ComplVioSum"]]
    IntVio: ClassVar[Literal["IntVio"]]
    IntVioIndex: ClassVar[Literal["IntVioIndex"]]
    IntVioSum: ClassVar[Literal["IntVioSum"]]
    ObjN: ClassVar[Literal["ObjN"]]
    ObjNCon: ClassVar[Literal["ObjNCon"]]
    ObjNPriority: ClassVar[Literal["ObjNPriority"]]
    ObjNWeight: ClassVar[Literal["ObjNWeight"]]
    ObjNRelTol: ClassVar[Literal["ObjNRelTol"]]
    ObjNAbsTol: ClassVar[Literal["ObjNAbsTol"]]
    ObjNVal: ClassVar[Literal["ObjNVal"]]
    ObjNName: ClassVar[Literal["ObjNName"]]
    NumObj: ClassVar[Literal["NumObj"]]
    ScenNLB: ClassVar[Literal["ScenNLB"]]
    ScenNUB: ClassVar[Literal["ScenNUB"]]
    ScenNObj: ClassVar[Literal["ScenNObj"]]
    ScenNRHS: ClassVar[Literal["ScenNRHS"]]
    ScenNName: ClassVar[Literal["ScenNName"]]
    ScenNX: ClassVar[Literal["ScenNX"]]
    ScenNObjBound: ClassVar[Literal["ScenNObjBound"]]
    ScenNObjVal: ClassVar[Literal["ScenNObjVal"]]
    NumScenarios: ClassVar[Literal["NumScenarios"]]
    BatchErrorCode: ClassVar[Literal["BatchErrorCode"]]
    BatchErrorMessage: ClassVar[Literal["BatchErrorMessage"]]
    BatchID: ClassVar[Literal["BatchID"]]
    BatchStatus: ClassVar[Literal["BatchStatus"]]
    # end
    def __setattr__(self, name: str, value: object, /) -> NoReturn: ...
    def __delattr__(self, name: str, /) -> NoReturn: ...

class ParamConstClass:
    # made by make_stub.py: ParamConstClass
    BarIterLimit: ClassVar[str]
    Cutoff: ClassVar[str]
    IterationLimit: ClassVar[str]
    MemLimit: ClassVar[str]
    NodeLimit: ClassVar[str]
    SoftMemLimit: ClassVar[str]
    SolutionLimit: ClassVar[str]
    TimeLimit: ClassVar[str]
    WorkLimit: ClassVar[str]
    BestObjStop: ClassVar[str]
    BestBdStop: ClassVar[str]
    BarConvTol: ClassVar[str]
    BarQCPConvTol: ClassVar[str]
    FeasibilityTol: ClassVar[str]
    IntFeasTol: ClassVar[str]
    MarkowitzTol: ClassVar[str]
    MIPGap: ClassVar[str]
    MIPGapAbs: ClassVar[str]
    OptimalityTol: ClassVar[str]
    PSDTol: ClassVar[str]
    InfUnbdInfo: ClassVar[str]
    LPWarmStart: ClassVar[str]
    NetworkAlg: ClassVar[str]
    NormAdjust: ClassVar[str]
    ObjScale: ClassVar[str]
    PerturbValue: ClassVar[str]
    Quad: ClassVar[str]
    ScaleFlag: ClassVar[str]
    Sifting: ClassVar[str]
    SiftMethod: ClassVar[str]
    SimplexPricing: ClassVar[str]
    BarCorrectors: ClassVar[str]
    BarHomogeneous: ClassVar[str]
    BarOrder: ClassVar[str]
    Crossover: ClassVar[str]
    CrossoverBasis: ClassVar[str]
    QCPDual: ClassVar[str]
    BranchDir: ClassVar[str]
    DegenMoves: ClassVar[str]
    ConcurrentJobs: ClassVar[str]
    ConcurrentMIP: ClassVar[str]
    Disconnected: ClassVar[str]
    DistributedMIPJobs: ClassVar[str]
    Heuristics: ClassVar[str]
    ImproveStartGap: ClassVar[str]
    ImproveStartNodes: ClassVar[str]
    ImproveStartTime: ClassVar[str]
    MinRelNodes: ClassVar[str]
    MIPFocus: ClassVar[str]
    MIQCPMethod: ClassVar[str]
    NLPHeur: ClassVar[str]
    NodefileDir: ClassVar[str]
    NodefileStart: ClassVar[str]
    NodeMethod: ClassVar[str]
    NonConvex: ClassVar[str]
    NoRelHeurTime: ClassVar[str]
    NoRelHeurWork: ClassVar[str]
    OBBT: ClassVar[str]
    PartitionPlace: ClassVar[str]
    PumpPasses: ClassVar[str]
    RINS: ClassVar[str]
    SolFiles: ClassVar[str]
    SolutionNumber: ClassVar[str]
    SubMIPNodes: ClassVar[str]
    Symmetry: ClassVar[str]
    VarBranch: ClassVar[str]
    ZeroObjNodes: ClassVar[str]
    TuneCriterion: ClassVar[str]
    TuneJobs: ClassVar[str]
    TuneMetric: ClassVar[str]
    TuneOutput: ClassVar[str]
    TuneResults: ClassVar[str]
    TuneTimeLimit: ClassVar[str]
    TuneTrials: ClassVar[str]
    TuneCleanup: ClassVar[str]
    TuneTargetMIPGap: ClassVar[str]
    TuneTargetTime: ClassVar[str]
    PoolSearchMode: ClassVar[str]
    PoolSolutions: ClassVar[str]
    PoolGap: ClassVar[str]
    PoolGapAbs: ClassVar[str]
    BQPCuts: ClassVar[str]
    Cuts: ClassVar[str]
    CliqueCuts: ClassVar[str]
    CoverCuts: ClassVar[str]
    FlowCoverCuts: ClassVar[str]
    FlowPathCuts: ClassVar[str]
    GUBCoverCuts: ClassVar[str]
    ImpliedCuts: ClassVar[str]
    InfProofCuts: ClassVar[str]
    MIPSepCuts: ClassVar[str]
    MIRCuts: ClassVar[str]
    ModKCuts: ClassVar[str]
    NetworkCuts: ClassVar[str]
    ProjImpliedCuts: ClassVar[str]
    PSDCuts: ClassVar[str]
    LiftProjectCuts: ClassVar[str]
    RelaxLiftCuts: ClassVar[str]
    RLTCuts: ClassVar[str]
    StrongCGCuts: ClassVar[str]
    SubMIPCuts: ClassVar[str]
    ZeroHalfCuts: ClassVar[str]
    CutAggPasses: ClassVar[str]
    CutPasses: ClassVar[str]
    GomoryPasses: ClassVar[str]
    WorkerPassword: ClassVar[str]
    WorkerPool: ClassVar[str]
    ComputeServer: ClassVar[str]
    ServerPassword: ClassVar[str]
    ServerTimeout: ClassVar[str]
    CSRouter: ClassVar[str]
    CSGroup: ClassVar[str]
    CSPriority: ClassVar[str]
    CSQueueTimeout: ClassVar[str]
    CSTLSInsecure: ClassVar[str]
    CSAppName: ClassVar[str]
    CSClientLog: ClassVar[str]
    CSIdleTimeout: ClassVar[str]
    CloudAccessID: ClassVar[str]
    CloudSecretKey: ClassVar[str]
    CloudPool: ClassVar[str]
    CloudHost: ClassVar[str]
    JobID: ClassVar[str]
    CSAPIAccessID: ClassVar[str]
    CSAPISecret: ClassVar[str]
    CSAuthToken: ClassVar[str]
    CSBatchMode: ClassVar[str]
    CSManager: ClassVar[str]
    UserName: ClassVar[str]
    AggFill: ClassVar[str]
    Aggregate: ClassVar[str]
    DisplayInterval: ClassVar[str]
    DualReductions: ClassVar[str]
    FeasRelaxBigM: ClassVar[str]
    FuncPieceError: ClassVar[str]
    FuncPieceLength: ClassVar[str]
    FuncPieceRatio: ClassVar[str]
    FuncPieces: ClassVar[str]
    FuncMaxVal: ClassVar[str]
    IISMethod: ClassVar[str]
    IntegralityFocus: ClassVar[str]
    JSONSolDetail: ClassVar[str]
    LazyConstraints: ClassVar[str]
    LogFile: ClassVar[str]
    LogToConsole: ClassVar[str]
    Method: ClassVar[str]
    NumericFocus: ClassVar[str]
    MultiObjMethod: ClassVar[str]
    MultiObjPre: ClassVar[str]
    IgnoreNames: ClassVar[str]
    ObjNumber: ClassVar[str]
    OutputFlag: ClassVar[str]
    PreCrush: ClassVar[str]
    PreDepRow: ClassVar[str]
    PreDual: ClassVar[str]
    PrePasses: ClassVar[str]
    PreQLinearize: ClassVar[str]
    Presolve: ClassVar[str]
    PreSOS1BigM: ClassVar[str]
    PreSOS1Encoding: ClassVar[str]
    PreSOS2BigM: ClassVar[str]
    PreSOS2Encoding: ClassVar[str]
    PreSparsify: ClassVar[str]
    PreMIQCPForm: ClassVar[str]
    Record: ClassVar[str]
    ResultFile: ClassVar[str]
    ScenarioNumber: ClassVar[str]
    Seed: ClassVar[str]
    StartNodeLimit: ClassVar[str]
    StartNumber: ClassVar[str]
    Threads: ClassVar[str]
    UpdateMode: ClassVar[str]
    # end
    def __setattr__(self, name: str, value: object, /) -> NoReturn: ...
    def __delattr__(self, name: str, /) -> NoReturn: ...

class StatusConstClass:
    # made by make_stub.py: StatusConstClass
    LOADED: ClassVar[int]
    OPTIMAL: ClassVar[int]
    INFEASIBLE: ClassVar[int]
    INF_OR_UNBD: ClassVar[int]
    UNBOUNDED: ClassVar[int]
    CUTOFF: ClassVar[int]
    ITERATION_LIMIT: ClassVar[int]
    NODE_LIMIT: ClassVar[int]
    TIME_LIMIT: ClassVar[int]
    SOLUTION_LIMIT: ClassVar[int]
    INTERRUPTED: ClassVar[int]
    NUMERIC: ClassVar[int]
    SUBOPTIMAL: ClassVar[int]
    INPROGRESS: ClassVar[int]
    USER_OBJ_LIMIT: ClassVar[int]
    WORK_LIMIT: ClassVar[int]
    MEM_LIMIT: ClassVar[int]
    # end
    def __setattr__(self, name: str, value: object, /) -> NoReturn: ...
    def __delattr__(self, name: str, /) -> NoReturn: ...

class ErrorConstClass:
    # made by make_stub.py: ErrorConstClass
    OUT_OF_MEMORY: ClassVar[int]
    NULL_ARGUMENT: ClassVar[int]
    INVALID_ARGUMENT: ClassVar[int]
    UNKNOWN_ATTRIBUTE: ClassVar[int]
    DATA_NOT_AVAILABLE: ClassVar[int]
    INDEX_OUT_OF_RANGE: ClassVar[int]
    UNKNOWN_PARAMETER: ClassVar[int]
    VALUE_OUT_OF_RANGE: ClassVar[int]
    CALLBACK: ClassVar[int]
    FILE_READ: ClassVar[int]
    FILE_WRITE: ClassVar[int]
    NUMERIC: ClassVar[int]
    IIS_NOT_INFEASIBLE: ClassVar[int]
    NOT_FOR_MIP: ClassVar[int]
    OPTIMIZATION_IN_PROGRESS: ClassVar[int]
    DUPLICATES: ClassVar[int]
    NODEFILE: ClassVar[int]
    Q_NOT_PSD: ClassVar[int]
    QCP_EQUALITY_CONSTRAINT: ClassVar[int]
    NETWORK: ClassVar[int]
    JOB_REJECTED: ClassVar[int]
    NOT_SUPPORTED: ClassVar[int]
    EXCEED_2B_NONZEROS: ClassVar[int]
    INVALID_PIECEWISE_OBJ: ClassVar[int]
    UPDATEMODE_CHANGE: ClassVar[int]
    CLOUD: ClassVar[int]
    MODEL_MODIFICATION: ClassVar[int]
    CSWORKER: ClassVar[int]
    TUNE_MODEL_TYPES: ClassVar[int]
    NOT_IN_MODEL: ClassVar[int]
    FAILED_TO_CREATE_MODEL: ClassVar[int]
    INTERNAL: ClassVar[int]
    # end

class CallbackClass:
    # made by make_stub.py: CallbackClass
    POLLING: ClassVar[int]
    PRESOLVE: ClassVar[int]
    SIMPLEX: ClassVar[int]
    MIP: ClassVar[int]
    MIPSOL: ClassVar[int]
    MIPNODE: ClassVar[int]
    MESSAGE: ClassVar[int]
    BARRIER: ClassVar[int]
    MULTIOBJ: ClassVar[int]
    IIS: ClassVar[int]
    PRE_COLDEL: ClassVar[int]
    PRE_ROWDEL: ClassVar[int]
    PRE_SENCHG: ClassVar[int]
    PRE_BNDCHG: ClassVar[int]
    PRE_COECHG: ClassVar[int]
    SPX_ITRCNT: ClassVar[int]
    SPX_OBJVAL: ClassVar[int]
    SPX_PRIMINF: ClassVar[int]
    SPX_DUALINF: ClassVar[int]
    SPX_ISPERT: ClassVar[int]
    BARRIER_ITRCNT: ClassVar[int]
    BARRIER_PRIMOBJ: ClassVar[int]
    BARRIER_DUALOBJ: ClassVar[int]
    BARRIER_PRIMINF: ClassVar[int]
    BARRIER_DUALINF: ClassVar[int]
    BARRIER_COMPL: ClassVar[int]
    MIP_OBJBST: ClassVar[int]
    MIP_OBJBND: ClassVar[int]
    MIP_NODCNT: ClassVar[int]
    MIP_SOLCNT: ClassVar[int]
    MIP_CUTCNT: ClassVar[int]
    MIP_NODLFT: ClassVar[int]
    MIP_ITRCNT: ClassVar[int]
    MIP_OPENSCENARIOS: ClassVar[int]
    MIP_PHASE: ClassVar[int]
    MIPSOL_SOL: ClassVar[int]
    MIPSOL_OBJ: ClassVar[int]
    MIPSOL_OBJBST: ClassVar[int]
    MIPSOL_OBJBND: ClassVar[int]
    MIPSOL_NODCNT: ClassVar[int]
    MIPSOL_SOLCNT: ClassVar[int]
    MIPSOL_OPENSCENARIOS: ClassVar[int]
    MIPSOL_PHASE: ClassVar[int]
    MIPNODE_STATUS: ClassVar[int]
    MIPNODE_REL: ClassVar[int]
    MIPNODE_OBJBST: ClassVar[int]
    MIPNODE_OBJBND: ClassVar[int]
    MIPNODE_NODCNT: ClassVar[int]
    MIPNODE_SOLCNT: ClassVar[int]
    MIPNODE_BRVAR: ClassVar[int]
    MIPNODE_OPENSCENARIOS: ClassVar[int]
    MIPNODE_PHASE: ClassVar[int]
    MSG_STRING: ClassVar[int]
    RUNTIME: ClassVar[int]
    WORK: ClassVar[int]
    MULTIOBJ_OBJCNT: ClassVar[int]
    MULTIOBJ_SOLCNT: ClassVar[int]
    MULTIOBJ_SOL: ClassVar[int]
    IIS_CONSTRMIN: ClassVar[int]
    IIS_CONSTRMAX: ClassVar[int]
    IIS_CONSTRGUESS: ClassVar[int]
    IIS_BOUNDMIN: ClassVar[int]
    IIS_BOUNDMAX: ClassVar[int]
    IIS_BOUNDGUESS: ClassVar[int]
    # end

class ZVN:
    attr: ClassVar[AttrConstClass]
    Attr: ClassVar[AttrConstClass]
    param: ClassVar[ParamConstClass]
    Param: ClassVar[ParamConstClass]
    callback: ClassVar[type[CallbackClass]]
    Callback: ClassVar[type[CallbackClass]]
    error: ClassVar[ErrorConstClass]
    Error: ClassVar[ErrorConstClass]
    status: ClassVar[StatusConstClass]
    Status: ClassVar[StatusConstClass]
    # made by make_stub.py: ZVN
    LOADED: ClassVar[int]
    OPTIMAL: ClassVar[int]
    INFEASIBLE: ClassVar[int]
    INF_OR_UNBD: ClassVar[int]
    UNBOUNDED: ClassVar[int]
    CUTOFF: ClassVar[int]
    ITERATION_LIMIT: ClassVar[int]
    NODE_LIMIT: ClassVar[int]
    TIME_LIMIT: ClassVar[int]
    SOLUTION_LIMIT: ClassVar[int]
    INTERRUPTED: ClassVar[int]
    NUMERIC: ClassVar[int]
    SUBOPTIMAL: ClassVar[int]
    INPROGRESS: ClassVar[int]
    USER_OBJ_LIMIT: ClassVar[int]
    WORK_LIMIT: ClassVar[int]
    MEM_LIMIT: ClassVar[int]
    ERROR_OUT_OF_MEMORY: ClassVar[int]
    ERROR_NULL_ARGUMENT: ClassVar[int]
    ERROR_INVALID_ARGUMENT: ClassVar[int]
    ERROR_UNKNOWN_ATTRIBUTE: ClassVar[int]
    ERROR_DATA_NOT_AVAILABLE: ClassVar[int]
    ERROR_INDEX_OUT_OF_RANGE: ClassVar[int]
    ERROR_UNKNOWN_PARAMETER: ClassVar[int]
    ERROR_VALUE_OUT_OF_RANGE: ClassVar[int]
    ERROR_CALLBACK: ClassVar[int]
    ERROR_FILE_READ: ClassVar[int]
    ERROR_FILE_WRITE: ClassVar[int]
    ERROR_NUMERIC: ClassVar[int]
    ERROR_IIS_NOT_INFEASIBLE: ClassVar[int]
    ERROR_NOT_FOR_MIP: ClassVar[int]
    ERROR_OPTIMIZATION_IN_PROGRESS: ClassVar[int]
    ERROR_DUPLICATES: ClassVar[int]
    ERROR_NODEFILE: ClassVar[int]
    ERROR_Q_NOT_PSD: ClassVar[int]
    ERROR_QCP_EQUALITY_CONSTRAINT: ClassVar[int]
    ERROR_NETWORK: ClassVar[int]
    ERROR_JOB_REJECTED: ClassVar[int]
    ERROR_NOT_SUPPORTED: ClassVar[int]
    ERROR_EXCEED_2B_NONZEROS: ClassVar[int]
    ERROR_INVALID_PIECEWISE_OBJ: ClassVar[int]
    ERROR_UPDATEMODE_CHANGE: ClassVar[int]
    ERROR_CLOUD: ClassVar[int]
    ERROR_MODEL_MODIFICATION: ClassVar[int]
    ERROR_CSWORKER: ClassVar[int]
    ERROR_TUNE_MODEL_TYPES: ClassVar[int]
    ERROR_NOT_IN_MODEL: ClassVar[int]
    ERROR_FAILED_TO_CREATE_MODEL: ClassVar[int]
    ERROR_INTERNAL: ClassVar[int]
    ERROR_SECURITY: ClassVar[int]
    BATCH_CREATED: ClassVar[int]
    BATCH_SUBMITTED: ClassVar[int]
    BATCH_ABORTED: ClassVar[int]
    BATCH_FAILED: ClassVar[int]
    BATCH_COMPLETED: ClassVar[int]
    VERSION_MAJOR: ClassVar[int]
    VERSION_MINOR: ClassVar[int]
    VERSION_TECHNICAL: ClassVar[int]
    BASIC: ClassVar[int]
    NONBASIC_LOWER: ClassVar[int]
    NONBASIC_UPPER: ClassVar[int]
    SUPERBASIC: ClassVar[int]
    MINIMIZE: ClassVar[int]
    MAXIMIZE: ClassVar[int]
    SOS_TYPE1: ClassVar[int]
    SOS_TYPE2: ClassVar[int]
    GENCONSTR_MAX: ClassVar[int]
    GENCONSTR_MIN: ClassVar[int]
    GENCONSTR_ABS: ClassVar[int]
    GENCONSTR_AND: ClassVar[int]
    GENCONSTR_OR: ClassVar[int]
    GENCONSTR_NORM: ClassVar[int]
    GENCONSTR_INDICATOR: ClassVar[int]
    GENCONSTR_PWL: ClassVar[int]
    GENCONSTR_POLY: ClassVar[int]
    GENCONSTR_EXP: ClassVar[int]
    GENCONSTR_EXPA: ClassVar[int]
    GENCONSTR_LOG: ClassVar[int]
    GENCONSTR_LOGA: ClassVar[int]
    GENCONSTR_POW: ClassVar[int]
    GENCONSTR_SIN: ClassVar[int]
    GENCONSTR_COS: ClassVar[int]
    GENCONSTR_TAN: ClassVar[int]
    GENCONSTR_LOGISTIC: ClassVar[int]
    MAXINT: ClassVar[int]
    MAX_NAMELEN: ClassVar[int]
    MAX_STRLEN: ClassVar[int]
    MAX_TAGLEN: ClassVar[int]
    MAX_CONCURRENT: ClassVar[int]
    DEFAULT_CS_PORT: ClassVar[int]
    CUTS_AUTO: ClassVar[int]
    CUTS_OFF: ClassVar[int]
    CUTS_CONSERVATIVE: ClassVar[int]
    CUTS_AGGRESSIVE: ClassVar[int]
    CUTS_VERYAGGRESSIVE: ClassVar[int]
    METHOD_NONE: ClassVar[int]
    METHOD_AUTO: ClassVar[int]
    METHOD_PRIMAL: ClassVar[int]
    METHOD_DUAL: ClassVar[int]
    METHOD_BARRIER: ClassVar[int]
    METHOD_CONCURRENT: ClassVar[int]
    METHOD_DETERMINISTIC_CONCURRENT: ClassVar[int]
    METHOD_DETERMINISTIC_CONCURRENT_SIMPLEX: ClassVar[int]
    FEASRELAX_LINEAR: ClassVar[int]
    FEASRELAX_QUADRATIC: ClassVar[int]
    FEASRELAX_CARDINALITY: ClassVar[int]
    PHASE_MIP_NOREL: ClassVar[int]
    PHASE_MIP_SEARCH: ClassVar[int]
    PHASE_MIP_IMPROVE: ClassVar[int]
    LESS_EQUAL: ClassVar[str]
    GREATER_EQUAL: ClassVar[str]
    EQUAL: ClassVar[str]
    CONTINUOUS: ClassVar[str]
    BINARY: ClassVar[str]
    INTEGER: ClassVar[str]
    SEMICONT: ClassVar[str]
    SEMIINT: ClassVar[str]
    INFINITY: ClassVar[float]
    UNDEFINED: ClassVar[float]
    # end

_Linear: TypeAlias = "SupportsFloat | Var | LinExpr"
_Expression: TypeAlias = "SupportsFloat | Var | LinExpr | QuadExpr"
_ModelT = TypeVar("_ModelT", bound="Model")

# made by make_stub.py: names of attributes
_ModelFloat: TypeAlias = Literal[
    "DNumNZs",
    "ObjCon",
    "Kappa",
    "KappaExact",
    "MaxCoeff",
    "MinCoeff",
    "MaxBound",
    "MinBound",
    "MaxObjCoeff",
    "MinObjCoeff",
    "MaxRHS",
    "MinRHS",
    "MaxQCRHS",
    "MinQCRHS",
    "MaxQCCoeff",
    "MinQCCoeff",
    "MaxQCLCoeff",
    "MinQCLCoeff",
    "MaxQObjCoeff",
    "MinQObjCoeff",
    "ObjVal",
    "ObjBound",
    "ObjBoundC",
    "PoolObjBound",
    "PoolObjVal",
    "MIPGap",
    "Runtime",
    "Work",
    "IterCount",
    "NodeCount",
    "FarkasProof",
    "MaxVio",
    "BoundVio",
    "BoundSVio",
    "BoundVioSum",
    "BoundSVioSum",
    "ConstrVio",
    "ConstrSVio",
    "ConstrVioSum",
    "ConstrSVioSum",
    "ConstrResidual",
    "ConstrSResidual",
    "ConstrResidualSum",
    "ConstrSResidualSum",
    "DualVio",
    "DualSVio",
    "DualVioSum",
    "DualSVioSum",
    "DualResidual",
    "DualSResidual",
    "DualResidualSum",
    "DualSResidualSum",
    "ComplVio",
    "ComplVioSum",
    "IntVio",
    "IntVioSum",
    "ObjNCon",
    "ObjNWeight",
    "ObjNRelTol",
    "ObjNAbsTol",
    "ObjNVal",
    "ScenNObjBound",
    "ScenNObjVal",
]
_ModelFloatSet: TypeAlias = Literal[
    "ObjCon",
    "ObjNCon",
    "ObjNWeight",
    "ObjNRelTol",
    "ObjNAbsTol",
]
_ModelInt: TypeAlias = Literal[
    "NumConstrs",
    "NumVars",
    "NumSOS",
    "NumQConstrs",
    "NumGenConstrs",
    "NumNZs",
    "NumQNZs",
    "NumQCNZs",
    "NumIntVars",
    "NumBinVars",
    "NumPWLObjVars",
    "ModelSense",
    "IsMIP",
    "IsQP",
    "IsQCP",
    "IsMultiObj",
    "IISMinimal",
    "Status",
    "SolCount",
    "BarIterCount",
    "NumStart",
    "TuneResultCount",
    "Fingerprint",
    "ConcurrentWinMethod",
    "BoundVioIndex",
    "BoundSVioIndex",
    "ConstrVioIndex",
    "ConstrSVioIndex",
    "ConstrResidualIndex",
    "ConstrSResidualIndex",
    "DualVioIndex",
    "DualSVioIndex",
    "DualResidualIndex",
    "DualSResidualIndex",
    "ComplVioIndex",
    "IntVioIndex",
    "ObjNPriority",
    "NumObj",
    "NumScenarios",
    "BatchErrorCode",
    "BatchStatus",
]
_ModelIntSet: TypeAlias = Literal[
    "ModelSense",
    "NumStart",
    "ObjNPriority",
    "NumObj",
]
_ModelStr: TypeAlias = Literal[
    "ModelName",
    "ObjNName",
    "ScenNName",
    "BatchErrorMessage",
    "BatchID",
]
_ModelStrSet: TypeAlias = Literal[
    "ModelName",
    "ObjNName",
    "ScenNName",
]
_VarFloat: TypeAlias = Literal[
    "LB",
    "UB",
    "Obj",
    "X",
    "RC",
    "Xn",
    "BarX",
    "Start",
    "VarHintVal",
    "SAObjLow",
    "SAObjUp",
    "SALBLow",
    "SALBUp",
    "SAUBLow",
    "SAUBUp",
    "UnbdRay",
    "PStart",
    "PreFixVal",
    "ObjN",
    "ScenNLB",
    "ScenNUB",
    "ScenNObj",
    "ScenNX",
]
_VarFloatSet: TypeAlias = Literal[
    "LB",
    "UB",
    "Obj",
    "Start",
    "VarHintVal",
    "PStart",
    "ObjN",
    "ScenNLB",
    "ScenNUB",
    "ScenNObj",
]
_VarInt: TypeAlias = Literal[
    "VarHintPri",
    "BranchPriority",
    "Partition",
    "VBasis",
    "PWLObjCvx",
    "PoolIgnore",
    "IISLB",
    "IISUB",
    "IISLBForce",
    "IISUBForce",
    "VarPreStat",
]
_VarIntSet: TypeAlias = Literal[
    "VarHintPri",
    "BranchPriority",
    "Partition",
    "VBasis",
    "PoolIgnore",
    "IISLBForce",
    "IISUBForce",
]
_VarStr: TypeAlias = Literal[
    "VType",
    "VarName",
    "VTag",
]
_VarStrSet: TypeAlias = Literal[
    "VType",
    "VarName",
    "VTag",
]
_ConstrFloat: TypeAlias = Literal[
    "RHS",
    "Pi",
    "Slack",
    "SARHSLow",
    "SARHSUp",
    "FarkasDual",
    "DStart",
    "ScenNRHS",
]
_ConstrFloatSet: TypeAlias = Literal[
    "RHS",
    "DStart",
    "ScenNRHS",
]
_ConstrInt: TypeAlias = Literal[
    "CBasis",
    "IISConstr",
    "IISConstrForce",
    "Lazy",
]
_ConstrIntSet: TypeAlias = Literal[
    "CBasis",
    "IISConstrForce",
    "Lazy",
]
_ConstrStr: TypeAlias = Literal[
    "Sense",
    "ConstrName",
    "CTag",
]
_ConstrStrSet: TypeAlias = Literal[
    "Sense",
    "ConstrName",
    "CTag",
]
_SOSInt: TypeAlias = Literal[
    "IISSOS",
    "IISSOSForce",
]
_SOSIntSet: TypeAlias = Literal["IISSOSForce"]
_QConstrFloat: TypeAlias = Literal[
    "QCRHS",
    "QCPi",
    "QCSlack",
]
_QConstrFloatSet: TypeAlias = Literal["QCRHS"]
_QConstrInt: TypeAlias = Literal[
    "IISQConstr",
    "IISQConstrForce",
]
_QConstrIntSet: TypeAlias = Literal["IISQConstrForce"]
_QConstrStr: TypeAlias = Literal[
    "QCSense",
    "QCName",
    "QCTag",
]
_QConstrStrSet: TypeAlias = Literal[
    "QCSense",
    "QCName",
    "QCTag",
]
_GenConstrFloat: TypeAlias = Literal[
    "FuncPieceError",
    "FuncPieceLength",
    "FuncPieceRatio",
]
_GenConstrFloatSet: TypeAlias = Literal[
    "FuncPieceError",
    "FuncPieceLength",
    "FuncPieceRatio",
]
_GenConstrInt: TypeAlias = Literal[
    "GenConstrType",
    "IISGenConstr",
    "IISGenConstrForce",
    "FuncPieces",
]
_GenConstrIntSet: TypeAlias = Literal[
    "IISGenConstrForce",
    "FuncPieces",
]
_GenConstrStr: TypeAlias = Literal["GenConstrName"]
_GenConstrStrSet: TypeAlias = Literal["GenConstrName"]
# end

_FloatName: TypeAlias = _VarFloat | _ConstrFloat | _QConstrFloat | _GenConstrFloat
_IntName: TypeAlias = _VarInt | _ConstrInt | _SOSInt | _QConstrInt | _GenConstrInt
_StrName: TypeAlias = _VarStr | _ConstrStr | _QConstrStr | _GenConstrStr
_FloatSetName: TypeAlias = _VarFloatSet | _ConstrFloatSet | _QConstrFloatSet | _GenConstrFloatSet
_IntSetName: TypeAlias = _VarIntSet | _ConstrIntSet | _SOSIntSet | _QConstrIntSet | _GenConstrIntSet
_StrSetName: TypeAlias = _VarStrSet | _ConstrStrSet | _QConstrStrSet | _GenConstrStrSet

class Var:
    def _repr_html_(self) -> str: ...
    # made by make_stub.py: Var
    LB: float
    UB: float
    Obj: float
    VType: str
    VarName: str
    X: Final[float]
    RC: Final[float]
    Xn: Final[float]
    BarX: Final[float]
    Start: float
    VarHintVal: float
    VarHintPri: int
    BranchPriority: int
    Partition: int
    VBasis: int
    PWLObjCvx: Final[int]
    PoolIgnore: int
    IISLB: Final[int]
    IISUB: Final[int]
    IISLBForce: int
    IISUBForce: int
    SAObjLow: Final[float]
    SAObjUp: Final[float]
    SALBLow: Final[float]
    SALBUp: Final[float]
    SAUBLow: Final[float]
    SAUBUp: Final[float]
    UnbdRay: Final[float]
    PStart: float
    PreFixVal: Final[float]
    VarPreStat: Final[int]
    VTag: str
    ObjN: float
    ScenNLB: float
    ScenNUB: float
    ScenNObj: float
    ScenNX: Final[float]
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _colno(self) -> int: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    def __init__(self, cmodel: object, colno: SupportsInt) -> None: ...
    def __cindex__(self) -> int: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    # made by make_stub.py: Var by name
    @overload
    def getAttr(self, attrname: _VarFloat) -> float: ...
    @overload
    def getAttr(self, attrname: _VarInt) -> int: ...
    @overload
    def getAttr(self, attrname: _VarStr) -> str: ...
    @overload
    def setAttr(self, attrname: _VarFloatSet, newval: SupportsFloat) -> None: ...
    @overload
    def setAttr(self, attrname: _VarIntSet, newval: int) -> None: ...
    @overload
    def setAttr(self, attrname: _VarStrSet, newval: str) -> None: ...
    # end
    def prefetchAttr(self, attrname: str) -> None: ...
    @property
    def index(self) -> int: ...
    def sameAs(self, other: object) -> bool: ...
    def __numcols__(self) -> int: ...
    def _safename(self) -> tuple[str, bool, bool]: ...
    def __hash__(self) -> int: ...
    __array_priority__: ClassVar[float]
    @overload
    def __add__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __add__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __radd__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __radd__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __sub__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __sub__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __rsub__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __rsub__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __mul__(self, value: SupportsFloat, /) -> LinExpr: ...
    @overload
    def __mul__(self, value: Var | LinExpr, /) -> QuadExpr: ...
    @overload
    def __rmul__(self, value: SupportsFloat, /) -> LinExpr: ...
    @overload
    def __rmul__(self, value: Var | LinExpr, /) -> QuadExpr: ...
    def __truediv__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __pow__(self, value: SupportsFloat, mod: None = None, /) -> QuadExpr: ...
    def __neg__(self) -> LinExpr: ...
    @overload
    def __iadd__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __iadd__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __isub__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __isub__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __imul__(self, value: SupportsFloat, /) -> LinExpr: ...
    @overload
    def __imul__(self, value: Var | LinExpr, /) -> QuadExpr: ...
    @overload  # type: ignore[override]
    def __eq__(self, value: QuadExpr, /) -> _QuadComparison: ...
    @overload
    def __eq__(self, value: object, /) -> TempConstr: ...
    @overload
    def __le__(self, value: QuadExpr, /) -> _QuadComparison: ...
    @overload
    def __le__(self, value: object, /) -> TempConstr: ...
    @overload
    def __ge__(self, value: QuadExpr, /) -> _QuadComparison: ...
    @overload
    def __ge__(self, value: object, /) -> TempConstr: ...
    def __div__(self, constant: SupportsFloat, /) -> LinExpr: ...

class Constr:
    def _repr_html_(self) -> str: ...
    # made by make_stub.py: Constr
    Sense: str
    RHS: float
    ConstrName: str
    Pi: Final[float]
    Slack: Final[float]
    CBasis: int
    IISConstr: Final[int]
    IISConstrForce: int
    SARHSLow: Final[float]
    SARHSUp: Final[float]
    FarkasDual: Final[float]
    DStart: float
    Lazy: int
    CTag: str
    ScenNRHS: float
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _rowno(self) -> int: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    def __init__(self, cmodel: object, rowno: SupportsInt) -> None: ...
    def __cindex__(self) -> int: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    # made by make_stub.py: Constr by name
    @overload
    def getAttr(self, attrname: _ConstrFloat) -> float: ...
    @overload
    def getAttr(self, attrname: _ConstrInt) -> int: ...
    @overload
    def getAttr(self, attrname: _ConstrStr) -> str: ...
    @overload
    def setAttr(self, attrname: _ConstrFloatSet, newval: SupportsFloat) -> None: ...
    @overload
    def setAttr(self, attrname: _ConstrIntSet, newval: int) -> None: ...
    @overload
    def setAttr(self, attrname: _ConstrStrSet, newval: str) -> None: ...
    # end
    def prefetchAttr(self, attrname: str) -> None: ...
    @property
    def index(self) -> int: ...
    def sameAs(self, other: object) -> bool: ...
    def __numrows__(self) -> int: ...

class SOS:
    # made by make_stub.py: SOS
    IISSOS: Final[int]
    IISSOSForce: int
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _sosno(self) -> int: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    def __init__(self, cmodel: object, sosno: SupportsInt) -> None: ...
    def __cindex__(self) -> int: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    # made by make_stub.py: SOS by name
    def getAttr(self, attrname: _SOSInt) -> int: ...
    def setAttr(self, attrname: _SOSIntSet, newval: int) -> None: ...
    # end
    def prefetchAttr(self, attrname: str) -> None: ...

class QConstr:
    def _repr_html_(self) -> str: ...
    # made by make_stub.py: QConstr
    QCSense: str
    QCRHS: float
    QCName: str
    IISQConstr: Final[int]
    IISQConstrForce: int
    QCPi: Final[float]
    QCSlack: Final[float]
    QCTag: str
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _qconstrno(self) -> int: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    def __init__(self, cmodel: object, qconstrno: SupportsInt) -> None: ...
    def __cindex__(self) -> int: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    # made by make_stub.py: QConstr by name
    @overload
    def getAttr(self, attrname: _QConstrFloat) -> float: ...
    @overload
    def getAttr(self, attrname: _QConstrInt) -> int: ...
    @overload
    def getAttr(self, attrname: _QConstrStr) -> str: ...
    @overload
    def setAttr(self, attrname: _QConstrFloatSet, newval: SupportsFloat) -> None: ...
    @overload
    def setAttr(self, attrname: _QConstrIntSet, newval: int) -> None: ...
    @overload
    def setAttr(self, attrname: _QConstrStrSet, newval: str) -> None: ...
    # end
    def prefetchAttr(self, attrname: str) -> None: ...

class GenConstr:
    # made by make_stub.py: GenConstr
    GenConstrType: Final[int]
    GenConstrName: str
    IISGenConstr: Final[int]
    IISGenConstrForce: int
    FuncPieceError: float
    FuncPieceLength: float
    FuncPieceRatio: float
    FuncPieces: int
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _genconstrno(self) -> int: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    def __init__(self, cmodel: object, genconstrno: SupportsInt) -> None: ...
    def __cindex__(self) -> int: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    # made by make_stub.py: GenConstr by name
    @overload
    def getAttr(self, attrname: _GenConstrFloat) -> float: ...
    @overload
    def getAttr(self, attrname: _GenConstrInt) -> int: ...
    @overload
    def getAttr(self, attrname: _GenConstrStr) -> str: ...
    @overload
    def setAttr(self, attrname: _GenConstrFloatSet, newval: SupportsFloat) -> None: ...
    @overload
    def setAttr(self, attrname: _GenConstrIntSet, newval: int) -> None: ...
    @overload
    def setAttr(self, attrname: _GenConstrStrSet, newval: str) -> None: ...
    # end
    def prefetchAttr(self, attrname: str) -> None: ...

# One for all keys, by key, or in order, also nested as an array is.
_Numbers: TypeAlias = (
    SupportsFloat
    | Mapping[Any, SupportsFloat]
    | Iterable[SupportsFloat]
    | Iterable[Iterable[SupportsFloat]]
    | Iterable[Iterable[Iterable[SupportsFloat]]]
)
_Texts: TypeAlias = str | Mapping[Any, str] | Iterable[str] | Iterable[Iterable[str]]

_Handle = Var | Constr | SOS | QConstr | GenConstr
_Removable: TypeAlias = "_Handle | MVar | MConstr | MQConstr | Sequence[_Removable] | Mapping[Any, _Removable]"

class LinExpr:
    def _repr_html_(self) -> str: ...
    __array_priority__: ClassVar[float]
    @overload
    def __add__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __add__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __radd__(self, expr: _Linear, /) -> LinExpr: ...
    @overload
    def __radd__(self, expr: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __sub__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __sub__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __rsub__(self, expr: _Linear, /) -> LinExpr: ...
    @overload
    def __rsub__(self, expr: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __mul__(self, value: SupportsFloat, /) -> LinExpr: ...
    @overload
    def __mul__(self, value: Var | LinExpr, /) -> QuadExpr: ...
    @overload
    def __rmul__(self, expr: SupportsFloat, /) -> LinExpr: ...
    @overload
    def __rmul__(self, expr: Var | LinExpr, /) -> QuadExpr: ...
    def __truediv__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __rtruediv__(self, value: object, /) -> NoReturn: ...
    def __pow__(self, value: SupportsFloat, mod: None = None, /) -> QuadExpr: ...
    def __rpow__(self, value: object, mod: None = None, /) -> NoReturn: ...
    def __neg__(self) -> LinExpr: ...
    @overload
    def __iadd__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __iadd__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __isub__(self, value: _Linear, /) -> LinExpr: ...
    @overload
    def __isub__(self, value: QuadExpr, /) -> QuadExpr: ...
    @overload
    def __imul__(self, value: SupportsFloat, /) -> LinExpr: ...
    @overload
    def __imul__(self, value: Var | LinExpr, /) -> QuadExpr: ...
    @overload  # type: ignore[override]
    def __eq__(self, value: QuadExpr, /) -> _QuadComparison: ...
    @overload
    def __eq__(self, value: object, /) -> TempConstr: ...
    @overload
    def __le__(self, value: QuadExpr, /) -> _QuadComparison: ...
    @overload
    def __le__(self, value: object, /) -> TempConstr: ...
    @overload
    def __ge__(self, value: QuadExpr, /) -> _QuadComparison: ...
    @overload
    def __ge__(self, value: object, /) -> TempConstr: ...
    def __init__(
        self,
        arg1: _Linear | Iterable[tuple[SupportsFloat, Var]] | Iterable[SupportsFloat] = 0.0,
        arg2: Var | Iterable[Var] | None = None,
    ) -> None: ...
    def add(self, arg1: _Linear, mult: SupportsFloat = 1.0) -> None: ...
    def addConstant(self, c: SupportsFloat) -> None: ...
    def addTerms(self, newcoeffs: SupportsFloat | Iterable[SupportsFloat], newvars: Var | Iterable[Var]) -> None: ...
    def clear(self) -> None: ...
    def copy(self) -> LinExpr: ...
    def getCoeff(self, i: SupportsInt) -> float: ...
    def getConstant(self) -> float: ...
    def getValue(self) -> float: ...
    def getVar(self, i: SupportsInt) -> Var: ...
    def remove(self, item: SupportsInt | Var) -> None: ...
    def size(self) -> int: ...
    def __sizeof__(self) -> int: ...
    def __reduce__(self) -> tuple[Any, ...]: ...
    def _asprettystring(self) -> str: ...
    def _dbgprint(self) -> None: ...
    def _flatten(self) -> None: ...
    def _is_nested(self) -> bool: ...
    def _mul(self, mult: SupportsFloat) -> None: ...
    def _normalize(self) -> None: ...

class QuadExpr:
    def _repr_html_(self) -> str: ...
    __array_priority__: ClassVar[float]
    def __add__(self, value: _Expression, /) -> QuadExpr: ...
    def __radd__(self, expr: _Expression, /) -> QuadExpr: ...
    def __sub__(self, value: _Expression, /) -> QuadExpr: ...
    def __rsub__(self, expr: _Expression, /) -> QuadExpr: ...
    def __mul__(self, value: _Linear, /) -> QuadExpr: ...
    def __rmul__(self, expr: _Linear, /) -> QuadExpr: ...
    def __truediv__(self, value: SupportsFloat, /) -> QuadExpr: ...
    def __rtruediv__(self, value: object, /) -> NoReturn: ...
    def __neg__(self) -> QuadExpr: ...
    def __iadd__(self, value: _Expression, /) -> QuadExpr: ...
    def __isub__(self, value: _Expression, /) -> QuadExpr: ...
    def __imul__(self, value: _Linear, /) -> QuadExpr: ...
    def __eq__(self, value: object, /) -> _QuadComparison: ...  # type: ignore[override]
    def __le__(self, value: object, /) -> _QuadComparison: ...
    def __ge__(self, value: object, /) -> _QuadComparison: ...
    def __init__(self, expr: _Expression | Iterable[tuple[SupportsFloat, Var]] | None = None) -> None: ...
    def add(self, expr: _Expression, mult: SupportsFloat = 1.0) -> None: ...
    def addConstant(self, c: SupportsFloat) -> None: ...
    @overload
    def addTerms(
        self, coeffs: SupportsFloat | Iterable[SupportsFloat], vars: Var | Iterable[Var], vars2: None = None
    ) -> None: ...
    @overload
    def addTerms(self, coeffs: SupportsFloat, vars: Var, vars2: Var) -> None: ...
    @overload
    def addTerms(self, coeffs: Collection[SupportsFloat], vars: Collection[Var], vars2: Collection[Var]) -> None: ...
    def clear(self) -> None: ...
    def copy(self) -> QuadExpr: ...
    def getCoeff(self, i: SupportsInt) -> float: ...
    def getLinExpr(self) -> LinExpr: ...
    def getValue(self) -> float: ...
    def getVar1(self, i: SupportsInt) -> Var: ...
    def getVar2(self, i: SupportsInt) -> Var: ...
    def remove(self, item: SupportsInt | Var) -> None: ...
    def size(self) -> int: ...
    def __sizeof__(self) -> int: ...
    def __reduce__(self) -> tuple[Any, ...]: ...
    def _asprettystring(self) -> str: ...
    def _flatten(self) -> None: ...
    def _mul(self, mult: _Linear) -> None: ...
    def _normalize(self) -> None: ...

class TempConstr:
    def _repr_html_(self) -> str: ...
    @property
    def _lhs(self) -> Any: ...
    @property
    def _sense(self) -> str: ...
    @property
    def _rhs(self) -> Any: ...
    def __init__(self, lhs: object, sense: str, rhs: object) -> None: ...
    def __rshift__(self, value: object, /) -> Any: ...
    def __rrshift__(self, value: object, /) -> Any: ...
    def __bool__(self) -> NoReturn: ...
    def __nonzero__(self) -> NoReturn: ...
    def __reduce__(self) -> tuple[Any, ...]: ...

# What a comparison with a QuadExpr gives: the constraint that it makes is a QConstr.
class _QuadComparison(TempConstr): ...

# The same for arrays, which make an MConstr or MQConstr.
class _MatrixComparison(TempConstr): ...
class _QuadMatrixComparison(TempConstr): ...

# Attributes of arrays of handles. One value may be set for all elements.
class _FloatArray:
    def __get__(self, instance: object, owner: type, /) -> npt.NDArray[np.float64]: ...
    def __set__(self, instance: object, value: SupportsFloat | Iterable[SupportsFloat], /) -> None: ...

class _IntArray:
    def __get__(self, instance: object, owner: type, /) -> npt.NDArray[np.int32]: ...
    def __set__(self, instance: object, value: SupportsInt | Iterable[SupportsInt], /) -> None: ...

class _StrArray:
    def __get__(self, instance: object, owner: type, /) -> npt.NDArray[Any]: ...
    def __set__(self, instance: object, value: str | Iterable[str], /) -> None: ...

class _ReadOnlyFloatArray:
    def __get__(self, instance: object, owner: type, /) -> npt.NDArray[np.float64]: ...
    def __set__(self, instance: object, value: NoReturn, /) -> None: ...

class _ReadOnlyIntArray:
    def __get__(self, instance: object, owner: type, /) -> npt.NDArray[np.int32]: ...
    def __set__(self, instance: object, value: NoReturn, /) -> None: ...

# Arrays and sparse matrices of numbers; scipy's have no common type that is known without it.
_Matrix: TypeAlias = Any
_Cells: TypeAlias = SupportsFloat | npt.NDArray[Any]
_LinearCells: TypeAlias = Var | LinExpr | MVar | MLinExpr
_Axis: TypeAlias = int | tuple[int, ...] | None

class MVar:
    __array_priority__: ClassVar[int]
    # made by make_stub.py: MVar
    LB: _FloatArray
    UB: _FloatArray
    Obj: _FloatArray
    VType: _StrArray
    VarName: _StrArray
    X: _ReadOnlyFloatArray
    RC: _ReadOnlyFloatArray
    Xn: _ReadOnlyFloatArray
    BarX: _ReadOnlyFloatArray
    Start: _FloatArray
    VarHintVal: _FloatArray
    VarHintPri: _IntArray
    BranchPriority: _IntArray
    Partition: _IntArray
    VBasis: _IntArray
    PWLObjCvx: _ReadOnlyIntArray
    PoolIgnore: _IntArray
    IISLB: _ReadOnlyIntArray
    IISUB: _ReadOnlyIntArray
    IISLBForce: _IntArray
    IISUBForce: _IntArray
    SAObjLow: _ReadOnlyFloatArray
    SAObjUp: _ReadOnlyFloatArray
    SALBLow: _ReadOnlyFloatArray
    SALBUp: _ReadOnlyFloatArray
    SAUBLow: _ReadOnlyFloatArray
    SAUBUp: _ReadOnlyFloatArray
    UnbdRay: _ReadOnlyFloatArray
    PStart: _FloatArray
    PreFixVal: _ReadOnlyFloatArray
    VarPreStat: _ReadOnlyIntArray
    VTag: _StrArray
    ObjN: _FloatArray
    ScenNLB: _FloatArray
    ScenNUB: _FloatArray
    ScenNObj: _FloatArray
    ScenNX: _ReadOnlyFloatArray
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _vararr(self) -> npt.NDArray[np.object_]: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    @property
    def T(self) -> MVar: ...
    @property
    def shape(self) -> tuple[int, ...]: ...
    @property
    def ndim(self) -> int: ...
    @property
    def size(self) -> int: ...
    def __init__(self, arr: npt.NDArray[np.object_]) -> None: ...
    @staticmethod
    def fromlist(varlist: Iterable[Any]) -> MVar: ...
    @staticmethod
    def fromvar(var: Var) -> MVar: ...
    def copy(self) -> MVar: ...
    def transpose(self) -> MVar: ...
    def reshape(self, *shape: int | tuple[int, ...], order: Literal["C", "F", "A"] = "C") -> MVar: ...
    def diagonal(self, offset: int = 0, axis1: int = 0, axis2: int = 1) -> MVar: ...
    def _squeeze(self, axis: _Axis = None) -> MVar: ...
    def item(self) -> Var: ...
    def tolist(self) -> Any: ...
    def sum(self, axis: _Axis = None, out: None = None) -> MLinExpr: ...
    def getAttr(self, attrname: str) -> npt.NDArray[Any]: ...
    def setAttr(self, attrname: str, value: object) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...
    def _toexpr(self) -> MLinExpr: ...
    def _idxarr(self) -> npt.NDArray[np.int32]: ...
    def _indexed_data(self, a: Sequence[Any] | npt.NDArray[Any], dtype: Any) -> npt.NDArray[Any]: ...
    def __dir__(self) -> list[str]: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __getitem__(self, index: Any, /) -> MVar: ...
    @overload
    def __add__(self, value: QuadExpr | MQuadExpr, /) -> MQuadExpr: ...
    @overload
    def __add__(self, value: _Cells | _LinearCells, /) -> MLinExpr: ...
    @overload
    def __add__(self, value: _Matrix, /) -> Any: ...
    def __radd__(self, value: _Matrix, /) -> Any: ...
    @overload
    def __sub__(self, value: QuadExpr | MQuadExpr, /) -> MQuadExpr: ...
    @overload
    def __sub__(self, value: _Cells | _LinearCells, /) -> MLinExpr: ...
    @overload
    def __sub__(self, value: _Matrix, /) -> Any: ...
    def __rsub__(self, value: _Matrix, /) -> Any: ...
    @overload
    def __mul__(self, value: _LinearCells, /) -> MQuadExpr: ...
    @overload
    def __mul__(self, value: _Cells, /) -> MLinExpr: ...
    @overload
    def __mul__(self, value: _Matrix, /) -> Any: ...
    def __rmul__(self, value: _Matrix, /) -> Any: ...
    @overload
    def __matmul__(self, value: MVar | MLinExpr, /) -> MQuadExpr: ...
    @overload
    def __matmul__(self, value: npt.NDArray[Any], /) -> MLinExpr: ...
    @overload
    def __matmul__(self, value: _Matrix, /) -> Any: ...
    def __rmatmul__(self, value: _Matrix, /) -> MLinExpr: ...
    def __truediv__(self, value: _Matrix, /) -> MLinExpr: ...
    def __pow__(self, value: Any, mod: None = None, /) -> MQuadExpr: ...
    def __neg__(self) -> MLinExpr: ...
    def __pos__(self) -> MVar: ...
    def __eq__(self, value: object, /) -> _MatrixComparison: ...  # type: ignore[override]
    def __le__(self, value: object, /) -> _MatrixComparison: ...
    def __ge__(self, value: object, /) -> _MatrixComparison: ...

class MLinExpr:
    __array_priority__: ClassVar[int]
    _keep_compact: ClassVar[int]
    @property
    def _learr(self) -> npt.NDArray[np.object_] | None: ...
    @property
    def _matmulparts(self) -> list[tuple[Any, MVar]] | None: ...
    @property
    def _const(self) -> npt.NDArray[np.float64] | None: ...
    @property
    def _is_compact(self) -> bool: ...
    @property
    def _leading_adim(self) -> int: ...
    @property
    def shape(self) -> tuple[int, ...]: ...
    @property
    def ndim(self) -> int: ...
    @property
    def size(self) -> int: ...
    def __init__(
        self,
        wraponly: npt.NDArray[np.object_] | None = None,
        matmulparts: Iterable[tuple[Any, MVar]] | None = None,
        b: npt.NDArray[np.float64] | None = None,
    ) -> None: ...
    @classmethod
    def zeros(cls, shape: int | tuple[int, ...]) -> MLinExpr: ...
    @classmethod
    def _zeros_full(cls, shape: int | tuple[int, ...]) -> MLinExpr: ...
    @classmethod
    def _from_mvar(cls, fromobj: MVar, force_full: bool = False) -> MLinExpr: ...
    @classmethod
    def _from_mvar_full(cls, fromobj: MVar) -> MLinExpr: ...
    @classmethod
    def _from_mvar_compact(cls, x: MVar) -> MLinExpr: ...
    @classmethod
    def _from_var(cls, fromobj: Var) -> MLinExpr: ...
    @classmethod
    def _from_linexpr(cls, fromobj: LinExpr) -> MLinExpr: ...
    @classmethod
    def _from_linexprs(cls, les: Iterable[Any]) -> MLinExpr: ...
    @classmethod
    def _from_compact_affine_expr(
        cls, x_left: MVar | None = None, A: _Matrix = None, x_right: MVar | None = None, b: Any = None
    ) -> MLinExpr: ...
    @classmethod
    def _from_matmul_right(cls, A: _Matrix, x: MVar) -> MLinExpr: ...
    @classmethod
    def _from_matmul_left(cls, x: MVar, A: _Matrix) -> MLinExpr: ...
    @staticmethod
    def _allows_compact(shape: Iterable[int]) -> bool: ...
    def _extract_Axb(self) -> tuple[Any, MVar | None, npt.NDArray[np.float64]]: ...
    def _concat_matmulparts(self) -> None: ...
    def _add_matmul_part(self, A: _Matrix, x: MVar) -> None: ...
    def _to_full(self) -> MLinExpr: ...
    def _convert_to_full(self) -> None: ...
    def copy(self) -> MLinExpr: ...
    def _copy_compact(self) -> MLinExpr: ...
    def _copy_full(self) -> MLinExpr: ...
    def sum(self, axis: _Axis = None, out: None = None) -> MLinExpr: ...
    def item(self) -> LinExpr: ...
    def clear(self) -> None: ...
    def getConstant(self) -> npt.NDArray[np.float64]: ...
    def getValue(self) -> npt.NDArray[np.float64]: ...
    def _flatten(self) -> None: ...
    def _normalize(self) -> None: ...
    def __getitem__(self, index: Any, /) -> MLinExpr: ...
    def __setitem__(self, index: Any, value: Any, /) -> None: ...
    def __delitem__(self, index: Any, /) -> NoReturn: ...
    @overload
    def __add__(self, value: QuadExpr | MQuadExpr, /) -> MQuadExpr: ...
    @overload
    def __add__(self, value: _Cells | _LinearCells, /) -> MLinExpr: ...
    @overload
    def __add__(self, value: _Matrix, /) -> Any: ...
    def __radd__(self, value: _Matrix, /) -> Any: ...
    @overload
    def __sub__(self, value: QuadExpr | MQuadExpr, /) -> MQuadExpr: ...
    @overload
    def __sub__(self, value: _Cells | _LinearCells, /) -> MLinExpr: ...
    @overload
    def __sub__(self, value: _Matrix, /) -> Any: ...
    def __rsub__(self, value: _Matrix, /) -> Any: ...
    @overload
    def __mul__(self, value: _LinearCells, /) -> MQuadExpr: ...
    @overload
    def __mul__(self, value: _Cells, /) -> MLinExpr: ...
    @overload
    def __mul__(self, value: _Matrix, /) -> Any: ...
    def __rmul__(self, value: _Matrix, /) -> Any: ...
    @overload
    def __matmul__(self, value: MVar | MLinExpr, /) -> MQuadExpr: ...
    @overload
    def __matmul__(self, value: npt.NDArray[Any], /) -> MLinExpr: ...
    @overload
    def __matmul__(self, value: _Matrix, /) -> Any: ...
    def __rmatmul__(self, value: _Matrix, /) -> Any: ...
    def __truediv__(self, value: _Matrix, /) -> MLinExpr: ...
    def __iadd__(self, value: _Matrix, /) -> Any: ...  # type: ignore[misc]
    def __isub__(self, value: _Matrix, /) -> Any: ...  # type: ignore[misc]
    def __imul__(self, value: _Matrix, /) -> Any: ...  # type: ignore[misc]
    def __itruediv__(self, value: _Matrix, /) -> Any: ...
    def __neg__(self) -> MLinExpr: ...
    def __pos__(self) -> MLinExpr: ...
    def __eq__(self, value: object, /) -> _MatrixComparison: ...  # type: ignore[override]
    def __le__(self, value: object, /) -> _MatrixComparison: ...
    def __ge__(self, value: object, /) -> _MatrixComparison: ...

class MQuadExpr:
    __array_priority__: ClassVar[int]
    _keep_compact: ClassVar[int]
    @property
    def _ndle(self) -> MLinExpr: ...
    @property
    def _qearr(self) -> npt.NDArray[np.object_] | None: ...
    @property
    def _quadparts(self) -> list[tuple[MVar, Any, MVar]] | None: ...
    @property
    def _is_compact(self) -> bool: ...
    @property
    def shape(self) -> tuple[int, ...]: ...
    @property
    def ndim(self) -> int: ...
    @property
    def size(self) -> int: ...
    def __init__(
        self,
        qearr: npt.NDArray[np.object_] | None = None,
        quadparts: Iterable[tuple[MVar, Any, MVar]] | None = None,
        ndle: MLinExpr | None = None,
    ) -> None: ...
    @classmethod
    def zeros(cls, shape: int | tuple[int, ...]) -> MQuadExpr: ...
    @classmethod
    def _zeros_full(cls, shape: int | tuple[int, ...]) -> MQuadExpr: ...
    @classmethod
    def _from_mlinexpr(cls, ndle: MLinExpr, force_full: bool = False) -> MQuadExpr: ...
    @classmethod
    def _from_quad_expr(cls, qe: QuadExpr) -> MQuadExpr: ...
    @classmethod
    def _from_mvar_times_mvar(cls, mvar_left: MVar, mvar_right: MVar, force_full: bool = False) -> MQuadExpr: ...
    @staticmethod
    def _allows_compact(shape: Iterable[int]) -> bool: ...
    def _add_quadpart(self, x: MVar, Q: _Matrix, y: MVar) -> None: ...
    def _concat_quadparts(self) -> None: ...
    def _extract_xQy(self) -> tuple[MVar | None, Any, MVar | None]: ...
    def _extract_quadexpr(self) -> QuadExpr: ...
    def _to_full(self) -> MQuadExpr: ...
    def _convert_to_full(self) -> None: ...
    def copy(self) -> MQuadExpr: ...
    def sum(self, axis: _Axis = None, out: None = None) -> MQuadExpr: ...
    def item(self) -> QuadExpr: ...
    def clear(self) -> None: ...
    def _getConstant(self) -> npt.NDArray[np.float64]: ...
    def getValue(self) -> npt.NDArray[np.float64]: ...
    def _flatten(self) -> None: ...
    def _normalize(self) -> None: ...
    def __getitem__(self, index: Any, /) -> MQuadExpr: ...
    def __setitem__(self, index: Any, value: Any, /) -> None: ...
    def __delitem__(self, index: Any, /) -> NoReturn: ...
    def __add__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __radd__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __sub__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __rsub__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __mul__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __rmul__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __matmul__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __rmatmul__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __truediv__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __iadd__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __isub__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __imul__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __itruediv__(self, value: _Matrix, /) -> MQuadExpr: ...
    def __neg__(self) -> MQuadExpr: ...
    def __pos__(self) -> MQuadExpr: ...
    def __eq__(self, value: object, /) -> _QuadMatrixComparison: ...  # type: ignore[override]
    def __le__(self, value: object, /) -> _QuadMatrixComparison: ...
    def __ge__(self, value: object, /) -> _QuadMatrixComparison: ...

class MConstr:
    # made by make_stub.py: MConstr
    Sense: _StrArray
    RHS: _FloatArray
    ConstrName: _StrArray
    Pi: _ReadOnlyFloatArray
    Slack: _ReadOnlyFloatArray
    CBasis: _IntArray
    IISConstr: _ReadOnlyIntArray
    IISConstrForce: _IntArray
    SARHSLow: _ReadOnlyFloatArray
    SARHSUp: _ReadOnlyFloatArray
    FarkasDual: _ReadOnlyFloatArray
    DStart: _FloatArray
    Lazy: _IntArray
    CTag: _StrArray
    ScenNRHS: _FloatArray
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _constrarr(self) -> npt.NDArray[np.object_]: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    @property
    def shape(self) -> tuple[int, ...]: ...
    @property
    def ndim(self) -> int: ...
    @property
    def size(self) -> int: ...
    def __init__(self, constrarr: npt.NDArray[np.object_]) -> None: ...
    @classmethod
    def _fromlist(cls, constrlist: Iterable[Constr]) -> MConstr: ...
    def item(self) -> Constr: ...
    def tolist(self) -> Any: ...
    def getAttr(self, attrname: str) -> npt.NDArray[Any]: ...
    def setAttr(self, attrname: str, value: object) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...
    def _idxarr(self) -> npt.NDArray[np.int32]: ...
    def _numrows(self) -> int | None: ...
    def __dir__(self) -> list[str]: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __getitem__(self, index: Any, /) -> MConstr: ...

class MQConstr:
    # made by make_stub.py: MQConstr
    QCSense: _StrArray
    QCRHS: _FloatArray
    QCName: _StrArray
    IISQConstr: _ReadOnlyIntArray
    IISQConstrForce: _IntArray
    QCPi: _ReadOnlyFloatArray
    QCSlack: _ReadOnlyFloatArray
    QCTag: _StrArray
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _qconstrarr(self) -> npt.NDArray[np.object_]: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    @property
    def shape(self) -> tuple[int, ...]: ...
    @property
    def ndim(self) -> int: ...
    @property
    def size(self) -> int: ...
    def __init__(self, qconstrarr: npt.NDArray[np.object_]) -> None: ...
    @classmethod
    def _fromlist(cls, constrlist: Iterable[QConstr]) -> MQConstr: ...
    def item(self) -> QConstr: ...
    def tolist(self) -> Any: ...
    def getAttr(self, attrname: str) -> npt.NDArray[Any]: ...
    def setAttr(self, attrname: str, value: object) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...
    def _idxarr(self) -> npt.NDArray[np.int32]: ...
    def _numqconstrs(self) -> int | None: ...
    def __dir__(self) -> list[str]: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __getitem__(self, index: Any, /) -> MQConstr: ...

def _axis_to_axeslist(axis: _Axis, ndim: SupportsInt) -> list[int]: ...
def _matmul_shape(
    shape_left: Iterable[int], shape_right: Iterable[int], do_raise: bool = False
) -> tuple[int, ...] | None: ...
def _broadcast_shapes(*args: int | tuple[int, ...]) -> tuple[int, ...]: ...
def _all_refs_match(left: npt.NDArray[np.object_], right: npt.NDArray[np.object_]) -> bool: ...

class Column:
    @property
    def _coeffs(self) -> list[float]: ...
    @property
    def _constrs(self) -> list[Constr]: ...
    def __init__(
        self,
        coeffs: SupportsFloat | Iterable[SupportsFloat] | None = None,
        constrs: Constr | Iterable[Constr] | None = None,
    ) -> None: ...
    def addTerms(self, coeffs: SupportsFloat | Iterable[SupportsFloat], constrs: Constr | Iterable[Constr]) -> None: ...
    def clear(self) -> None: ...
    def copy(self) -> Column: ...
    def getCoeff(self, i: SupportsInt) -> float: ...
    def getConstr(self, i: SupportsInt) -> Constr: ...
    def remove(self, which: SupportsInt | Constr) -> None: ...
    def size(self) -> int: ...
    def _normalize(self) -> None: ...
    def __reduce__(self) -> tuple[Any, ...]: ...

class tuplelist(list[_T]):
    def __init__(self, data: Iterable[_T] = [], wild: object = "*") -> None: ...
    def __getslice__(self, b: int, c: int) -> tuplelist[_T]: ...
    def __delslice__(self, i: int, j: int) -> None: ...
    def __add__(self, value: list[_T], /) -> tuplelist[_T]: ...  # type: ignore[override]
    def __radd__(self, value: list[_T], /) -> tuplelist[_T]: ...
    def __iadd__(self, value: Iterable[_T], /) -> tuplelist[_T]: ...  # type: ignore[override]
    def __getstate__(self) -> Any: ...
    def __setstate__(self, state: Any, /) -> None: ...
    def append(self, x: _T, /) -> None: ...
    def extend(self, L: Iterable[_T], /) -> None: ...
    def insert(self, i: SupportsIndex, x: _T) -> None: ...
    def pop(self, i: SupportsIndex = -1) -> _T: ...
    def remove(self, x: _T, /) -> None: ...
    def clean(self) -> None: ...
    def select(self, *vals: object) -> tuplelist[_T]: ...
    def next(self, v: object) -> _T: ...
    def nextc(self, v: object) -> _T: ...
    def prev(self, v: object) -> _T: ...
    def prevc(self, v: object) -> _T: ...

class tupledict(dict[_K, _T]):
    wild: Any
    def __init__(self, *args: Any, **kwargs: Any) -> None: ...
    def __getstate__(self) -> Any: ...
    def __setstate__(self, state: Any, /) -> None: ...
    def clean(self) -> None: ...
    def select(self, *vals: object) -> list[_T]: ...
    def subset(self, *vals: object) -> tupledict[_K, _T]: ...
    def sum(self, *vals: object) -> LinExpr: ...
    def prod(self, d: Mapping[Any, SupportsFloat] | list[Any], *vals: object) -> LinExpr: ...
    def iterkeys(self) -> Iterator[_K]: ...
    def itervalues(self) -> Iterator[_T]: ...
    def iteritems(self, *vals: object) -> Iterator[tuple[_K, _T]]: ...
    def keys(self) -> tuplelist[_K]: ...  # type: ignore[override]
    def values(self) -> list[_T]: ...  # type: ignore[override]
    def items(self) -> list[tuple[_K, _T]]: ...  # type: ignore[override]
    def update(self, other: Mapping[_K, _T] | Iterable[tuple[_K, _T]] = (), /) -> None: ...  # type: ignore[override]
    def setord(self, ord: Sequence[_K]) -> None: ...

def multidict(data: Mapping[Any, Any] | Iterable[tuple[Any, Any]]) -> list[Any]: ...
@overload
def quicksum(list: MVar | MLinExpr) -> MLinExpr: ...  # type: ignore[overload-overlap]
@overload
def quicksum(list: MQuadExpr) -> MQuadExpr: ...  # type: ignore[overload-overlap]
@overload
def quicksum(list: Iterable[_Linear]) -> LinExpr: ...
@overload
def quicksum(list: Iterable[QuadExpr]) -> QuadExpr: ...
@overload
def quicksum(list: Iterable[_Expression]) -> LinExpr | QuadExpr: ...

class Model:
    def _repr_html_(self) -> str: ...
    Params: ParamClass
    params: ParamClass
    # made by make_stub.py: Model
    NumConstrs: Final[int]
    NumVars: Final[int]
    NumSOS: Final[int]
    NumQConstrs: Final[int]
    NumGenConstrs: Final[int]
    NumNZs: Final[int]
    DNumNZs: Final[float]
    NumQNZs: Final[int]
    NumQCNZs: Final[int]
    NumIntVars: Final[int]
    NumBinVars: Final[int]
    NumPWLObjVars: Final[int]
    ModelName: str
    ModelSense: int
    ObjCon: float
    IsMIP: Final[int]
    IsQP: Final[int]
    IsQCP: Final[int]
    IsMultiObj: Final[int]
    IISMinimal: Final[int]
    Kappa: Final[float]
    KappaExact: Final[float]
    MaxCoeff: Final[float]
    MinCoeff: Final[float]
    MaxBound: Final[float]
    MinBound: Final[float]
    MaxObjCoeff: Final[float]
    MinObjCoeff: Final[float]
    MaxRHS: Final[float]
    MinRHS: Final[float]
    MaxQCRHS: Final[float]
    MinQCRHS: Final[float]
    MaxQCCoeff: Final[float]
    MinQCCoeff: Final[float]
    MaxQCLCoeff: Final[float]
    MinQCLCoeff: Final[float]
    MaxQObjCoeff: Final[float]
    MinQObjCoeff: Final[float]
    ObjVal: Final[float]
    ObjBound: Final[float]
    ObjBoundC: Final[float]
    PoolObjBound: Final[float]
    PoolObjVal: Final[float]
    MIPGap: Final[float]
    Runtime: Final[float]
    Work: Final[float]
    Status: Final[int]
    SolCount: Final[int]
    IterCount: Final[float]
    NodeCount: Final[float]
    BarIterCount: Final[int]
    FarkasProof: Final[float]
    NumStart: int
    TuneResultCount: Final[int]
    Fingerprint: Final[int]
    ConcurrentWinMethod: Final[int]
    MaxVio: Final[float]
    BoundVio: Final[float]
    BoundSVio: Final[float]
    BoundVioIndex: Final[int]
    BoundSVioIndex: Final[int]
    BoundVioSum: Final[float]
    BoundSVioSum: Final[float]
    ConstrVio: Final[float]
    ConstrSVio: Final[float]
    ConstrVioIndex: Final[int]
    ConstrSVioIndex: Final[int]
    ConstrVioSum: Final[float]
    ConstrSVioSum: Final[float]
    ConstrResidual: Final[float]
    ConstrSResidual: Final[float]
    ConstrResidualIndex: Final[int]
    ConstrSResidualIndex: Final[int]
    ConstrResidualSum: Final[float]
    ConstrSResidualSum: Final[float]
    DualVio: Final[float]
    DualSVio: Final[float]
    DualVioIndex: Final[int]
    DualSVioIndex: Final[int]
    DualVioSum: Final[float]
    DualSVioSum: Final[float]
    DualResidual: Final[float]
    DualSResidual: Final[float]
    DualResidualIndex: Final[int]
    DualSResidualIndex: Final[int]
    DualResidualSum: Final[float]
    DualSResidualSum: Final[float]
    ComplVio: Final[float]
    ComplVioIndex: Final[int]
    ComplVioSum: Final[float]
    IntVio: Final[float]
    IntVioIndex: Final[int]
    IntVioSum: Final[float]
    ObjNCon: float
    ObjNPriority: int
    ObjNWeight: float
    ObjNRelTol: float
    ObjNAbsTol: float
    ObjNVal: Final[float]
    ObjNName: str
    NumObj: int
    ScenNName: str
    ScenNObjBound: Final[float]
    ScenNObjVal: Final[float]
    NumScenarios: Final[int]
    BatchErrorCode: Final[int]
    BatchErrorMessage: Final[str]
    BatchID: Final[str]
    BatchStatus: Final[int]
    # end
    @property
    def _cmodel(self) -> object: ...
    @property
    def _callback(self) -> object: ...
    @property
    def _uenv(self) -> Env | None: ...
    @property
    def _env(self) -> Env: ...
    @property
    def _typename(self) -> str: ...
    @property
    def _typeenum(self) -> int: ...
    def __init__(self, name: str = "", env: Env | None = None, cmodel: object = None) -> None: ...
    def dispose(self) -> None: ...
    def close(self) -> None: ...
    def __enter__(self: _ModelT) -> _ModelT: ...
    def __exit__(
        self,
        type: type[BaseException] | None,
        value: BaseException | None,
        traceback: types.TracebackType | None,
    ) -> Literal[False]: ...
    def __del__(self) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def update(self) -> None: ...
    def remove(self, items: _Removable) -> None: ...
    def addMVar(
        self,
        shape: int | tuple[int, ...],
        lb: Any = None,
        ub: Any = None,
        obj: Any = None,
        vtype: Any = None,
        name: Any = None,
    ) -> MVar: ...
    def addMConstr(
        self,
        A: _Matrix,
        x: MVar | Iterable[Var] | None,
        sense: str | Sequence[str],
        b: Any,
        name: str | Sequence[str] = "",
    ) -> MConstr: ...
    def addMQConstr(
        self,
        Q: _Matrix,
        c: Any,
        sense: str,
        rhs: SupportsFloat,
        xQ_L: MVar | Iterable[Var] | None = None,
        xQ_R: MVar | Iterable[Var] | None = None,
        xc: MVar | Iterable[Var] | None = None,
        name: str = "",
    ) -> QConstr: ...
    def setMObjective(
        self,
        Q: _Matrix,
        c: Any,
        constant: SupportsFloat,
        xQ_L: MVar | Iterable[Var] | None = None,
        xQ_R: MVar | Iterable[Var] | None = None,
        xc: MVar | Iterable[Var] | None = None,
        sense: int | None = None,
    ) -> None: ...
    def getA(self) -> Any: ...
    def getQ(self) -> Any: ...
    @staticmethod
    def _nd_indexed_names(prefix: str, shape: Iterable[int]) -> list[str]: ...
    def _createX(self, x: MVar | Iterable[Var] | None, /) -> MVar: ...
    def _addNDConstr(self, ndle: MLinExpr, sense: str, name: object) -> MConstr: ...
    def _addNDQConstr(self, ndqe: MQuadExpr, sense: str, name: object) -> MQConstr: ...
    def _v811_setMObjective(self, Q: _Matrix, c: Any) -> None: ...
    def _removeone(self, item: _Handle, /) -> None: ...
    def getVars(self) -> list[Var]: ...
    def getConstrs(self) -> list[Constr]: ...
    def getSOSs(self) -> list[SOS]: ...
    def getQConstrs(self) -> list[QConstr]: ...
    def getGenConstrs(self) -> list[GenConstr]: ...
    def getVarByName(self, name: str) -> Var | None: ...
    def getConstrByName(self, name: str) -> Constr | None: ...
    def getQConstrByName(self, name: str) -> QConstr | None: ...
    def getQCRow(self, qc: QConstr) -> QuadExpr: ...
    def _owns(self, object: object, /) -> bool: ...
    @overload
    def getAttr(self, attrname: _ModelFloat, objs: None = None) -> float: ...
    @overload
    def getAttr(self, attrname: _ModelInt, objs: None = None) -> int: ...
    @overload
    def getAttr(self, attrname: _ModelStr, objs: None = None) -> str: ...
    @overload
    def getAttr(self, attrname: _FloatName, objs: Mapping[_K, _Handle]) -> tupledict[_K, float]: ...  # type: ignore[overload-overlap]
    @overload
    def getAttr(self, attrname: _FloatName, objs: Iterable[_Handle] | None = None) -> list[float]: ...
    @overload
    def getAttr(self, attrname: _IntName, objs: Mapping[_K, _Handle]) -> tupledict[_K, int]: ...  # type: ignore[overload-overlap]
    @overload
    def getAttr(self, attrname: _IntName, objs: Iterable[_Handle] | None = None) -> list[int]: ...
    @overload
    def getAttr(self, attrname: _StrName, objs: Mapping[_K, _Handle]) -> tupledict[_K, str]: ...  # type: ignore[overload-overlap]
    @overload
    def getAttr(self, attrname: _StrName, objs: Iterable[_Handle] | None = None) -> list[str]: ...
    @overload
    def setAttr(self, attrname: _ModelFloatSet, arg1: SupportsFloat, arg2: None = None) -> None: ...
    @overload
    def setAttr(self, attrname: _ModelIntSet, arg1: int, arg2: None = None) -> None: ...
    @overload
    def setAttr(self, attrname: _ModelStrSet, arg1: str, arg2: None = None) -> None: ...
    @overload
    def setAttr(
        self, attrname: _FloatSetName, arg1: _Handle | Iterable[_Handle], arg2: SupportsFloat | Iterable[SupportsFloat]
    ) -> None: ...
    @overload
    def setAttr(
        self, attrname: _FloatSetName, arg1: Mapping[_K, _Handle], arg2: SupportsFloat | Mapping[_K, SupportsFloat]
    ) -> None: ...
    @overload
    def setAttr(self, attrname: _IntSetName, arg1: _Handle | Iterable[_Handle], arg2: int | Iterable[int]) -> None: ...
    @overload
    def setAttr(self, attrname: _IntSetName, arg1: Mapping[_K, _Handle], arg2: int | Mapping[_K, int]) -> None: ...
    @overload
    def setAttr(self, attrname: _StrSetName, arg1: _Handle | Iterable[_Handle], arg2: str | Iterable[str]) -> None: ...
    @overload
    def setAttr(self, attrname: _StrSetName, arg1: Mapping[_K, _Handle], arg2: str | Mapping[_K, str]) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...
    def reset(self, clearall: SupportsInt = 0) -> None: ...
    def copy(self) -> Model: ...
    def read(self, filename: _FileName) -> None: ...
    def write(self, filename: _FileName) -> None: ...
    def getJSONSolution(self) -> str: ...
    def message(self, msg: str) -> None: ...
    def _splitlongmessage(self, longstring: str, sep: Iterable[str] = " ", length: SupportsInt = 90) -> None: ...
    def optimize(self, callback: Callable[[Model, int], object] | None = None) -> None: ...
    def terminate(self) -> None: ...
    def addVar(
        self,
        lb: SupportsFloat = 0.0,
        ub: SupportsFloat = 1e100,
        obj: SupportsFloat = 0.0,
        vtype: str = "C",
        name: str = "",
        column: Column | None = None,
    ) -> Var: ...
    @overload
    def addVars(
        self,
        index: SupportsIndex,
        /,
        *,
        lb: _Numbers = 0.0,
        ub: _Numbers = 1e100,
        obj: _Numbers = 0.0,
        vtype: _Texts = "C",
        name: _Texts = "",
    ) -> tupledict[int, Var]: ...
    @overload
    def addVars(
        self,
        index: Iterable[_K],
        /,
        *,
        lb: _Numbers = 0.0,
        ub: _Numbers = 1e100,
        obj: _Numbers = 0.0,
        vtype: _Texts = "C",
        name: _Texts = "",
    ) -> tupledict[_K, Var]: ...
    @overload
    def addVars(
        self,
        *indexes: SupportsIndex | Iterable[Any],
        lb: _Numbers = 0.0,
        ub: _Numbers = 1e100,
        obj: _Numbers = 0.0,
        vtype: _Texts = "C",
        name: _Texts = "",
    ) -> tupledict[Any, Var]: ...
    @overload
    def addConstr(  # type: ignore[overload-overlap]
        self, lhs: _MatrixComparison, sense: str | None = None, rhs: None = None, name: str = ""
    ) -> MConstr: ...
    @overload
    def addConstr(  # type: ignore[overload-overlap]
        self, lhs: _QuadMatrixComparison, sense: str | None = None, rhs: None = None, name: str = ""
    ) -> MQConstr: ...
    @overload
    def addConstr(  # type: ignore[overload-overlap]
        self, lhs: _QuadComparison, sense: str | None = None, rhs: None = None, name: str = ""
    ) -> QConstr: ...
    @overload
    def addConstr(
        self, lhs: TempConstr | bool, sense: str | None = None, rhs: None = None, name: str = ""
    ) -> Constr: ...
    @overload
    def addConstr(self, lhs: QuadExpr, sense: str, rhs: _Expression, name: str = "") -> QConstr: ...
    @overload
    def addConstr(self, lhs: _Linear, sense: str, rhs: QuadExpr, name: str = "") -> QConstr: ...
    @overload
    def addConstr(self, lhs: _Linear, sense: str, rhs: _Linear, name: str = "") -> Constr: ...
    @overload
    def addConstrs(self, constrs: Iterable[_QuadComparison], name: _Texts = "") -> tupledict[Any, QConstr]: ...  # type: ignore[overload-overlap]
    @overload
    def addConstrs(self, constrs: Iterable[TempConstr | bool], name: _Texts = "") -> tupledict[Any, Constr]: ...
    @overload
    def addLConstr(
        self, lhs: TempConstr | bool, sense: str | None = None, rhs: None = None, name: str = ""
    ) -> Constr: ...
    @overload
    def addLConstr(self, lhs: _Linear, sense: str, rhs: _Linear, name: str = "") -> Constr: ...
    @overload
    def addQConstr(  # type: ignore[overload-overlap]
        self, lhs: _QuadComparison, sense: str | None = None, rhs: None = None, name: str = ""
    ) -> QConstr: ...
    @overload
    def addQConstr(
        self, lhs: TempConstr | bool, sense: str | None = None, rhs: None = None, name: str = ""
    ) -> Constr: ...
    @overload
    def addQConstr(self, lhs: QuadExpr, sense: str, rhs: _Expression, name: str = "") -> QConstr: ...
    @overload
    def addQConstr(self, lhs: _Linear, sense: str, rhs: QuadExpr, name: str = "") -> QConstr: ...
    @overload
    def addQConstr(self, lhs: _Linear, sense: str, rhs: _Linear, name: str = "") -> Constr: ...
    def addRange(self, expr: _Linear, lower: SupportsFloat, upper: SupportsFloat, name: str = "") -> Constr: ...
    def setObjective(self, expr: _Expression | MVar | MLinExpr | MQuadExpr, sense: int | None = None) -> None: ...
    def setObjectiveN(
        self,
        expr: _Linear,
        index: SupportsInt,
        priority: SupportsInt = 0,
        weight: SupportsFloat = 1.0,
        abstol: SupportsFloat = 1e-6,
        reltol: SupportsFloat = 0.0,
        name: str = "",
    ) -> None: ...
    def getObjective(self, index: SupportsInt | None = None) -> Any: ...
    def setPWLObj(self, var: Var, x: Sequence[SupportsFloat], y: Sequence[SupportsFloat]) -> None: ...
    def getPWLObj(self, var: Var) -> list[tuple[float, float]]: ...
    def setParam(self, paramname: str, newval: _ParamValue) -> None: ...
    def fixTuneParam(self, paramname: str) -> None: ...
    def resetParams(self) -> None: ...
    def getParamInfo(self, paramname: str) -> _ParamInfo | None: ...

class zelvan:
    _defaultenv: ClassVar[Env | None]
    _exiting: ClassVar[bool]
    @classmethod
    def interactive(cls) -> None: ...
    @classmethod
    def _getdefaultenv(cls, create: bool = True) -> Env | None: ...
    @classmethod
    def _getmodels(cls) -> list[tuple[str, Model]]: ...
    @staticmethod
    def _cleanup() -> None: ...
    @classmethod
    def version(cls) -> tuple[int, int, int]: ...
    @classmethod
    def platform(cls) -> str: ...
    @classmethod
    def _iscontainer(cls) -> int: ...
    @classmethod
    def read(cls, modelname: str, env: Env | None = None) -> Model: ...
    @classmethod
    def models(cls) -> None: ...
    @classmethod
    def disposeDefaultEnv(cls) -> None: ...

def read(filename: _FileName, env: Env | None = None) -> Model: ...
def models() -> None: ...
def disposeDefaultEnv() -> None: ...
def system(command: str) -> None: ...
def setParam(paramname: str, newvalue: _ParamValue) -> None: ...
def getParamInfo(paramname: str) -> _ParamInfo: ...
def fixTuneParam(paramname: str) -> None: ...
def resetParams() -> None: ...
def readParams(filename: _FileName) -> None: ...
def writeParams(filename: _FileName) -> None: ...
def help(argument: object = None) -> None: ...
def paramHelp(paramname: str | None = None) -> None: ...
