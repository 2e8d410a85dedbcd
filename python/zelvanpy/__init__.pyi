"""Types of the package. Descriptions are in the docstrings of the extension module."""

import io
import os
import types
from collections.abc import Callable, Iterable, Iterator, Mapping, Sequence
from typing import Any, ClassVar, Literal, NoReturn, SupportsFloat, SupportsIndex, SupportsInt, TypeAlias, TypeVar

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
    def __init__(self, env: Env) -> None: ...
    def __getattr__(self, name: str, /) -> Any: ...
    def __setattr__(self, name: str, value: _ParamValue, /) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def _getChangeList(self) -> str: ...

class AttrConstClass:
    NumConstrs: ClassVar[str]
    NumVars: ClassVar[str]
    NumSOS: ClassVar[str]
    NumQConstrs: ClassVar[str]
    NumGenConstrs: ClassVar[str]
    NumNZs: ClassVar[str]
    DNumNZs: ClassVar[str]
    NumQNZs: ClassVar[str]
    NumQCNZs: ClassVar[str]
    NumIntVars: ClassVar[str]
    NumBinVars: ClassVar[str]
    NumPWLObjVars: ClassVar[str]
    ModelName: ClassVar[str]
    ModelSense: ClassVar[str]
    ObjCon: ClassVar[str]
    IsMIP: ClassVar[str]
    IsQP: ClassVar[str]
    IsQCP: ClassVar[str]
    IsMultiObj: ClassVar[str]
    IISMinimal: ClassVar[str]
    Kappa: ClassVar[str]
    KappaExact: ClassVar[str]
    MaxCoeff: ClassVar[str]
    MinCoeff: ClassVar[str]
    MaxBound: ClassVar[str]
    MinBound: ClassVar[str]
    MaxObjCoeff: ClassVar[str]
    MinObjCoeff: ClassVar[str]
    MaxRHS: ClassVar[str]
    MinRHS: ClassVar[str]
    MaxQCRHS: ClassVar[str]
    MinQCRHS: ClassVar[str]
    MaxQCCoeff: ClassVar[str]
    MinQCCoeff: ClassVar[str]
    MaxQCLCoeff: ClassVar[str]
    MinQCLCoeff: ClassVar[str]
    MaxQObjCoeff: ClassVar[str]
    MinQObjCoeff: ClassVar[str]
    ObjVal: ClassVar[str]
    ObjBound: ClassVar[str]
    ObjBoundC: ClassVar[str]
    PoolObjBound: ClassVar[str]
    PoolObjVal: ClassVar[str]
    MIPGap: ClassVar[str]
    Runtime: ClassVar[str]
    Work: ClassVar[str]
    Status: ClassVar[str]
    SolCount: ClassVar[str]
    IterCount: ClassVar[str]
    NodeCount: ClassVar[str]
    BarIterCount: ClassVar[str]
    FarkasProof: ClassVar[str]
    NumStart: ClassVar[str]
    TuneResultCount: ClassVar[str]
    Fingerprint: ClassVar[str]
    ConcurrentWinMethod: ClassVar[str]
    LB: ClassVar[str]
    UB: ClassVar[str]
    Obj: ClassVar[str]
    VType: ClassVar[str]
    VarName: ClassVar[str]
    X: ClassVar[str]
    RC: ClassVar[str]
    Xn: ClassVar[str]
    BarX: ClassVar[str]
    Start: ClassVar[str]
    VarHintVal: ClassVar[str]
    VarHintPri: ClassVar[str]
    BranchPriority: ClassVar[str]
    Partition: ClassVar[str]
    VBasis: ClassVar[str]
    PWLObjCvx: ClassVar[str]
    PoolIgnore: ClassVar[str]
    IISLB: ClassVar[str]
    IISUB: ClassVar[str]
    IISLBForce: ClassVar[str]
    IISUBForce: ClassVar[str]
    SAObjLow: ClassVar[str]
    SAObjUp: ClassVar[str]
    SALBLow: ClassVar[str]
    SALBUp: ClassVar[str]
    SAUBLow: ClassVar[str]
    SAUBUp: ClassVar[str]
    UnbdRay: ClassVar[str]
    PStart: ClassVar[str]
    PreFixVal: ClassVar[str]
    VarPreStat: ClassVar[str]
    VTag: ClassVar[str]
    Sense: ClassVar[str]
    RHS: ClassVar[str]
    ConstrName: ClassVar[str]
    Pi: ClassVar[str]
    Slack: ClassVar[str]
    CBasis: ClassVar[str]
    IISConstr: ClassVar[str]
    IISConstrForce: ClassVar[str]
    SARHSLow: ClassVar[str]
    SARHSUp: ClassVar[str]
    FarkasDual: ClassVar[str]
    DStart: ClassVar[str]
    Lazy: ClassVar[str]
    CTag: ClassVar[str]
    IISSOS: ClassVar[str]
    IISSOSForce: ClassVar[str]
    QCSense: ClassVar[str]
    QCRHS: ClassVar[str]
    QCName: ClassVar[str]
    IISQConstr: ClassVar[str]
    IISQConstrForce: ClassVar[str]
    QCPi: ClassVar[str]
    QCSlack: ClassVar[str]
    QCTag: ClassVar[str]
    GenConstrType: ClassVar[str]
    GenConstrName: ClassVar[str]
    IISGenConstr: ClassVar[str]
    IISGenConstrForce: ClassVar[str]
    FuncPieceError: ClassVar[str]
    FuncPieceLength: ClassVar[str]
    FuncPieceRatio: ClassVar[str]
    FuncPieces: ClassVar[str]
    MaxVio: ClassVar[str]
    BoundVio: ClassVar[str]
    BoundSVio: ClassVar[str]
    BoundVioIndex: ClassVar[str]
    BoundSVioIndex: ClassVar[str]
    BoundVioSum: ClassVar[str]
    BoundSVioSum: ClassVar[str]
    ConstrVio: ClassVar[str]
    ConstrSVio: ClassVar[str]
    ConstrVioIndex: ClassVar[str]
    ConstrSVioIndex: ClassVar[str]
    ConstrVioSum: ClassVar[str]
    ConstrSVioSum: ClassVar[str]
    ConstrResidual: ClassVar[str]
    ConstrSResidual: ClassVar[str]
    ConstrResidualIndex: ClassVar[str]
    ConstrSResidualIndex: ClassVar[str]
    ConstrResidualSum: ClassVar[str]
    ConstrSResidualSum: ClassVar[str]
    DualVio: ClassVar[str]
    DualSVio: ClassVar[str]
    DualVioIndex: ClassVar[str]
    DualSVioIndex: ClassVar[str]
    DualVioSum: ClassVar[str]
    DualSVioSum: ClassVar[str]
    DualResidual: ClassVar[str]
    DualSResidual: ClassVar[str]
    DualResidualIndex: ClassVar[str]
    DualSResidualIndex: ClassVar[str]
    DualResidualSum: ClassVar[str]
    DualSResidualSum: ClassVar[str]
    ComplVio: ClassVar[str]
    ComplVioIndex: ClassVar[str]
    ComplVioSum: ClassVar[str]
    IntVio: ClassVar[str]
    IntVioIndex: ClassVar[str]
    IntVioSum: ClassVar[str]
    ObjN: ClassVar[str]
    ObjNCon: ClassVar[str]
    ObjNPriority: ClassVar[str]
    ObjNWeight: ClassVar[str]
    ObjNRelTol: ClassVar[str]
    ObjNAbsTol: ClassVar[str]
    ObjNVal: ClassVar[str]
    ObjNName: ClassVar[str]
    NumObj: ClassVar[str]
    ScenNLB: ClassVar[str]
    ScenNUB: ClassVar[str]
    ScenNObj: ClassVar[str]
    ScenNRHS: ClassVar[str]
    ScenNName: ClassVar[str]
    ScenNX: ClassVar[str]
    ScenNObjBound: ClassVar[str]
    ScenNObjVal: ClassVar[str]
    NumScenarios: ClassVar[str]
    BatchErrorCode: ClassVar[str]
    BatchErrorMessage: ClassVar[str]
    BatchID: ClassVar[str]
    BatchStatus: ClassVar[str]
    def __setattr__(self, name: str, value: object, /) -> NoReturn: ...
    def __delattr__(self, name: str, /) -> NoReturn: ...

class ParamConstClass:
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
    def __setattr__(self, name: str, value: object, /) -> NoReturn: ...
    def __delattr__(self, name: str, /) -> NoReturn: ...

class StatusConstClass:
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
    def __setattr__(self, name: str, value: object, /) -> NoReturn: ...
    def __delattr__(self, name: str, /) -> NoReturn: ...

class ErrorConstClass:
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

class CallbackClass:
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

_Linear: TypeAlias = "SupportsFloat | Var | LinExpr"
_AttrValue = SupportsFloat | str
_ModelT = TypeVar("_ModelT", bound="Model")

class Var:
    LB: float
    UB: float
    Obj: float
    VType: str
    VarName: str
    X: float
    RC: float
    Xn: float
    BarX: float
    Start: float
    VarHintVal: float  # kept, doesn't act on a solve yet
    VarHintPri: int  # kept, doesn't act on a solve yet
    BranchPriority: int  # kept, doesn't act on a solve yet
    Partition: int  # kept, doesn't act on a solve yet
    VBasis: int
    PWLObjCvx: int
    PoolIgnore: int  # kept, doesn't act on a solve yet
    IISLB: int
    IISUB: int
    IISLBForce: int
    IISUBForce: int
    SAObjLow: float
    SAObjUp: float
    SALBLow: float
    SALBUp: float
    SAUBLow: float
    SAUBUp: float
    UnbdRay: float
    PStart: float  # kept, doesn't act on a solve yet
    PreFixVal: float
    VarPreStat: int
    VTag: str
    ObjN: float
    ScenNLB: float
    ScenNUB: float
    ScenNObj: float
    ScenNX: float
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
    def __getattr__(self, name: str, /) -> Any: ...
    def __setattr__(self, name: str, value: Any, /) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def getAttr(self, attrname: str) -> Any: ...
    def setAttr(self, attrname: str, newval: _AttrValue) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...
    @property
    def index(self) -> int: ...
    def sameAs(self, other: object) -> bool: ...
    def __numcols__(self) -> int: ...
    def _safename(self) -> tuple[str, bool, bool]: ...
    def __hash__(self) -> int: ...
    __array_priority__: ClassVar[float]
    def __add__(self, value: _Linear, /) -> LinExpr: ...
    def __radd__(self, value: _Linear, /) -> LinExpr: ...
    def __sub__(self, value: _Linear, /) -> LinExpr: ...
    def __rsub__(self, value: _Linear, /) -> LinExpr: ...
    def __mul__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __rmul__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __truediv__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __neg__(self) -> LinExpr: ...
    def __iadd__(self, value: _Linear, /) -> LinExpr: ...
    def __isub__(self, value: _Linear, /) -> LinExpr: ...
    def __imul__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __eq__(self, value: object, /) -> TempConstr: ...  # type: ignore[override]
    def __le__(self, value: object, /) -> TempConstr: ...
    def __ge__(self, value: object, /) -> TempConstr: ...
    def __div__(self, constant: SupportsFloat, /) -> LinExpr: ...

class Constr:
    Sense: str
    RHS: float
    ConstrName: str
    Pi: float
    Slack: float
    CBasis: int
    IISConstr: int
    IISConstrForce: int
    SARHSLow: float
    SARHSUp: float
    FarkasDual: float
    DStart: float  # kept, doesn't act on a solve yet
    Lazy: int  # kept, doesn't act on a solve yet
    CTag: str
    ScenNRHS: float
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
    def __getattr__(self, name: str, /) -> Any: ...
    def __setattr__(self, name: str, value: Any, /) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def getAttr(self, attrname: str) -> Any: ...
    def setAttr(self, attrname: str, newval: _AttrValue) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...
    @property
    def index(self) -> int: ...
    def sameAs(self, other: object) -> bool: ...
    def __numrows__(self) -> int: ...

class SOS:
    IISSOS: int
    IISSOSForce: int
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
    def __getattr__(self, name: str, /) -> Any: ...
    def __setattr__(self, name: str, value: Any, /) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def getAttr(self, attrname: str) -> Any: ...
    def setAttr(self, attrname: str, newval: _AttrValue) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...

class QConstr:
    QCSense: str
    QCRHS: float
    QCName: str
    IISQConstr: int
    IISQConstrForce: int
    QCPi: float
    QCSlack: float
    QCTag: str
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
    def __getattr__(self, name: str, /) -> Any: ...
    def __setattr__(self, name: str, value: Any, /) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def getAttr(self, attrname: str) -> Any: ...
    def setAttr(self, attrname: str, newval: _AttrValue) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...

class GenConstr:
    GenConstrType: int
    GenConstrName: str
    IISGenConstr: int
    IISGenConstrForce: int
    FuncPieceError: float
    FuncPieceLength: float
    FuncPieceRatio: float
    FuncPieces: int
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
    def __getattr__(self, name: str, /) -> Any: ...
    def __setattr__(self, name: str, value: Any, /) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def getAttr(self, attrname: str) -> Any: ...
    def setAttr(self, attrname: str, newval: _AttrValue) -> None: ...
    def prefetchAttr(self, attrname: str) -> None: ...

_Handle = Var | Constr | SOS | QConstr | GenConstr
_Removable = _Handle | Sequence[_Removable] | Mapping[Any, _Removable]

class LinExpr:
    __array_priority__: ClassVar[float]
    def __add__(self, value: _Linear, /) -> LinExpr: ...
    def __radd__(self, expr: _Linear, /) -> LinExpr: ...
    def __sub__(self, value: _Linear, /) -> LinExpr: ...
    def __rsub__(self, expr: _Linear, /) -> LinExpr: ...
    def __mul__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __rmul__(self, expr: SupportsFloat, /) -> LinExpr: ...
    def __truediv__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __rtruediv__(self, value: object, /) -> NoReturn: ...
    def __neg__(self) -> LinExpr: ...
    def __iadd__(self, value: _Linear, /) -> LinExpr: ...
    def __isub__(self, value: _Linear, /) -> LinExpr: ...
    def __imul__(self, value: SupportsFloat, /) -> LinExpr: ...
    def __eq__(self, value: object, /) -> TempConstr: ...  # type: ignore[override]
    def __le__(self, value: object, /) -> TempConstr: ...
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

class TempConstr:
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
def quicksum(list: Iterable[_Linear]) -> LinExpr: ...

class Model:
    NumConstrs: int
    NumVars: int
    NumSOS: int
    NumQConstrs: int
    NumGenConstrs: int
    NumNZs: int
    DNumNZs: float
    NumQNZs: int
    NumQCNZs: int
    NumIntVars: int
    NumBinVars: int
    NumPWLObjVars: int
    ModelName: str
    ModelSense: int
    ObjCon: float
    IsMIP: int
    IsQP: int
    IsQCP: int
    IsMultiObj: int
    IISMinimal: int
    Kappa: float
    KappaExact: float
    MaxCoeff: float
    MinCoeff: float
    MaxBound: float
    MinBound: float
    MaxObjCoeff: float
    MinObjCoeff: float
    MaxRHS: float
    MinRHS: float
    MaxQCRHS: float
    MinQCRHS: float
    MaxQCCoeff: float
    MinQCCoeff: float
    MaxQCLCoeff: float
    MinQCLCoeff: float
    MaxQObjCoeff: float
    MinQObjCoeff: float
    ObjVal: float
    ObjBound: float
    ObjBoundC: float
    PoolObjBound: float
    PoolObjVal: float
    MIPGap: float
    Runtime: float
    Work: float
    Status: int
    SolCount: int
    IterCount: float
    NodeCount: float
    BarIterCount: int
    FarkasProof: float
    NumStart: int
    TuneResultCount: int
    Fingerprint: int
    ConcurrentWinMethod: int
    MaxVio: float
    BoundVio: float
    BoundSVio: float
    BoundVioIndex: int
    BoundSVioIndex: int
    BoundVioSum: float
    BoundSVioSum: float
    ConstrVio: float
    ConstrSVio: float
    ConstrVioIndex: int
    ConstrSVioIndex: int
    ConstrVioSum: float
    ConstrSVioSum: float
    ConstrResidual: float
    ConstrSResidual: float
    ConstrResidualIndex: int
    ConstrSResidualIndex: int
    ConstrResidualSum: float
    ConstrSResidualSum: float
    DualVio: float
    DualSVio: float
    DualVioIndex: int
    DualSVioIndex: int
    DualVioSum: float
    DualSVioSum: float
    DualResidual: float
    DualSResidual: float
    DualResidualIndex: int
    DualSResidualIndex: int
    DualResidualSum: float
    DualSResidualSum: float
    ComplVio: float
    ComplVioIndex: int
    ComplVioSum: float
    IntVio: float
    IntVioIndex: int
    IntVioSum: float
    ObjNCon: float
    ObjNPriority: int
    ObjNWeight: float
    ObjNRelTol: float
    ObjNAbsTol: float
    ObjNVal: float
    ObjNName: str
    NumObj: int
    ScenNName: str
    ScenNObjBound: float
    ScenNObjVal: float
    NumScenarios: int
    BatchErrorCode: int
    BatchErrorMessage: str
    BatchID: str
    BatchStatus: int
    Params: ParamClass
    params: ParamClass
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
    def __getattr__(self, name: str, /) -> Any: ...
    def __setattr__(self, name: str, value: Any, /) -> None: ...
    def __delattr__(self, name: str, /) -> None: ...
    def __dir__(self) -> list[str]: ...
    def update(self) -> None: ...
    def remove(self, items: _Removable) -> None: ...
    def _removeone(self, item: _Handle, /) -> None: ...
    def getVars(self) -> list[Var]: ...
    def getConstrs(self) -> list[Constr]: ...
    def getSOSs(self) -> list[SOS]: ...
    def getQConstrs(self) -> list[QConstr]: ...
    def getGenConstrs(self) -> list[GenConstr]: ...
    def getVarByName(self, name: str) -> Var | None: ...
    def getConstrByName(self, name: str) -> Constr | None: ...
    def _owns(self, object: object, /) -> bool: ...
    def getAttr(self, attrname: str, objs: Iterable[_Handle] | Mapping[Any, _Handle] | None = None) -> Any: ...
    def setAttr(self, attrname: str, arg1: Any, arg2: Any = None) -> None: ...
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
    def addVars(
        self, *indexes: Any, lb: Any = 0.0, ub: Any = 1e100, obj: Any = 0.0, vtype: Any = "C", name: Any = ""
    ) -> tupledict[Any, Var]: ...
    def addConstr(self, lhs: Any, sense: Any = None, rhs: Any = None, name: str = "") -> Any: ...
    def addConstrs(self, constrs: Iterable[Any], name: Any = "") -> tupledict[Any, Any]: ...
    def addLConstr(self, lhs: Any, sense: Any = None, rhs: Any = None, name: str = "") -> Constr: ...
    def addQConstr(self, lhs: Any, sense: Any = None, rhs: Any = None, name: str = "") -> Any: ...
    def addRange(self, expr: _Linear, lower: SupportsFloat, upper: SupportsFloat, name: str = "") -> Constr: ...
    def setObjective(self, expr: _Linear, sense: int | None = None) -> None: ...
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
    def getObjective(self, index: SupportsInt | None = None) -> LinExpr: ...
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
