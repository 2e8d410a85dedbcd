// The table of all parameters, in the order of names.inc. The effect says what a parameter drives here;
// it is left out where nothing under the library can honour the parameter.

#include <array>

#include "core/name_index.h"
#include "param/param.h"

namespace zelvan {

namespace {

constexpr double kInf = 1e100;
constexpr double kMaxInt = 2000000000;

constexpr ParamSpec integer(const char* name, double minimum, double maximum, double deflt, const char* purpose,
                            const char* effect = "") {
    return {name, 1, minimum, maximum, deflt, "", 0, purpose, effect};
}

constexpr ParamSpec real(const char* name, double minimum, double maximum, double deflt, const char* purpose,
                         const char* effect = "") {
    return {name, 2, minimum, maximum, deflt, "", 0, purpose, effect};
}

constexpr ParamSpec text(const char* name, const char* deflt, const char* purpose, const char* effect = "",
                         unsigned flags = 0) {
    return {name, 3, 0, 0, 0, deflt, flags, purpose, effect};
}

// The family of cut parameters: -1 automatic, 0 off, 1 moderate, 2 aggressive.
constexpr ParamSpec cuts(const char* name, const char* purpose) { return integer(name, -1, 2, -1, purpose); }

constexpr ParamSpec kParams[] = {
    // Termination
    integer("BarIterLimit", 0, kMaxInt, 1000, "Most iterations of the barrier method.",
            "HiGHS option ipm_iteration_limit; the solve ends with status ITERATION_LIMIT. With a quadratic objective "
            "another method is tried after 200."),
    real("Cutoff", -kInf, kInf, kInf, "Objective value that a solution must not be worse than; infinite for none.",
         "A MIP gets a constraint that keeps solutions within the value, the optimum of an LP is compared with it; a "
         "solve that finds none ends with status CUTOFF. A solve of several objectives doesn't ask it."),
    real(
        "IterationLimit", 0, kInf, kInf, "Most iterations of the simplex method.",
        "HiGHS options simplex_iteration_limit and, for active sets, qp_iteration_limit, and over all relaxations of a "
        "MIP; status ITERATION_LIMIT."),
    real("MemLimit", 0, kInf, kInf, "Most memory of the process, in gigabytes (10^9 bytes).",
         "The solve polls the memory of the process and fails with error OUT_OF_MEMORY."),
    real("NodeLimit", 0, kInf, kInf, "Most nodes of the branch-and-bound search.",
         "HiGHS option mip_max_nodes; the solve ends with status NODE_LIMIT."),
    real("SoftMemLimit", 0, kInf, kInf, "Memory of the process, in gigabytes, at which a solve ends in order.",
         "The resident memory of the process is polled; beyond the limit the solve ends with status MEM_LIMIT and the "
         "solution found so far."),
    integer("SolutionLimit", 1, kMaxInt, kMaxInt, "Number of improving solutions after which a MIP search ends.",
            "HiGHS option mip_max_improving_sols, and solutions that its first heuristics find count too; the solve "
            "ends with status SOLUTION_LIMIT."),
    real("TimeLimit", 0, kInf, kInf, "Most time of a solve, in seconds.",
         "HiGHS option time_limit; the solve ends with status TIME_LIMIT."),
    real("WorkLimit", 0, kInf, kInf, "Most work of a solve, in units that don't depend on the machine's speed.",
         "Work is 4e-9 * (rows + columns + nonzeros) * (simplex iterations + 100 * barrier iterations + 100 * nodes), "
         "polled; the solve ends with status WORK_LIMIT. HiGHS tells the iterations of a MIP between its steps only "
         "(the "
         "relaxation, a round of cuts, a heuristic), and the last step counts in full."),
    real("BestObjStop", -kInf, kInf, -kInf, "Objective value of a MIP solution that is good enough to end the search.",
         "The search is stopped when a solution reaches the value, with status USER_OBJ_LIMIT."),
    real("BestBdStop", -kInf, kInf, kInf, "Objective bound of a MIP at which the search ends.",
         "Polled in a MIP search, which ends with status USER_OBJ_LIMIT."),

    // Tolerances
    real("BarConvTol", 0, 1, 1e-8, "Relative gap of primal and dual objective at which the barrier method ends.",
         "HiGHS option ipm_optimality_tolerance, which is at least 1e-12."),
    real("BarQCPConvTol", 0, 1, 1e-6, "Like BarConvTol, for models with quadratic constraints."),
    real("FeasibilityTol", 1e-9, 1e-2, 1e-6, "Largest violation of a bound or constraint that counts as satisfied.",
         "HiGHS option primal_feasibility_tolerance, and at most this for mip_feasibility_tolerance; the default "
         "leaves HiGHS its 1e-7."),
    real("IntFeasTol", 1e-9, 1e-1, 1e-5, "Largest distance to an integer that counts as integer.",
         "HiGHS option mip_feasibility_tolerance; the default leaves HiGHS its 1e-6."),
    real("MarkowitzTol", 1e-4, 0.999, 0.0078125, "Threshold of pivots in factoring a basis.",
         "HiGHS option factor_pivot_threshold, within [0.0008, 0.5]; the default leaves it to NumericFocus."),
    real("MIPGap", 0, kInf, 1e-4, "Relative gap between incumbent and bound at which a MIP search ends.",
         "HiGHS option mip_rel_gap."),
    real("MIPGapAbs", 0, kInf, 1e-10, "Absolute gap between incumbent and bound at which a MIP search ends.",
         "HiGHS option mip_abs_gap."),
    real("OptimalityTol", 1e-9, 1e-2, 1e-6, "Largest reduced cost of the wrong sign that counts as optimal.",
         "HiGHS option dual_feasibility_tolerance; the default leaves HiGHS its 1e-7."),
    real("PSDTol", 0, kInf, 1e-6, "Largest diagonal shift that makes a quadratic matrix count as convex.",
         "A form that needs no more added to its diagonal is convex; relative to the largest coefficient of variables "
         "that go together where that is below 1."),

    // Simplex
    integer("InfUnbdInfo", 0, 1, 0, "Whether a certificate of infeasibility or unboundedness is computed.",
            "With 1, FarkasDual, FarkasProof or UnbdRay are filled after a solve of an LP that has no optimum."),
    integer("LPWarmStart", 0, 2, 1,
            "How an earlier or a given basis starts a solve of an LP: 0 not at all, 1 and 2 where it can.",
            "With 0 a solve forgets the basis of the one before and leaves a start basis out; 1 and 2 use them."),
    integer("NetworkAlg", -1, 1, -1, "Whether a network simplex method is used: -1 automatic, 0 no, 1 yes."),
    integer("NormAdjust", -1, 3, -1, "Variant of the norms in simplex pricing; -1 automatic."),
    real("ObjScale", -1, kInf, 0, "Divisor of the objective; 0 none, negative a power of the largest coefficient."),
    real("PerturbValue", 0, kInf, 2e-4, "Size of the perturbation by which the simplex method leaves degeneracy."),
    integer("Quad", -1, 1, -1, "Whether the simplex method computes in quad precision: -1 automatic, 0 no, 1 yes."),
    integer(
        "ScaleFlag", -1, 3, -1, "Scaling of the model: -1 automatic, 0 off, 1 to 3 stronger ways.",
        "HiGHS option simplex_scale_strategy: 0 off, -1 and 1 equilibration, 2 forced equilibration, 3 maximum value."),
    integer("Sifting", -1, 2, -1, "Whether the dual simplex method sifts columns: -1 automatic, 0 off, 1, 2 more."),
    integer("SiftMethod", -1, 2, -1, "Method for the models within sifting: 0 primal, 1 dual, 2 barrier."),
    integer("SimplexPricing", -1, 3, -1,
            "Pricing of the simplex method: -1 automatic, 0 partial, 1 steepest edge, 2 devex, 3 quick steepest edge.",
            "HiGHS options simplex_dual_edge_weight_strategy (0 Dantzig, 1 and 3 steepest edge, 2 devex) and "
            "simplex_primal_edge_weight_strategy (0 Dantzig, otherwise devex)."),

    // Barrier
    integer("BarCorrectors", -1, kMaxInt, -1, "Most corrector steps of a barrier iteration; -1 automatic."),
    integer("BarHomogeneous", -1, 1, -1, "Whether the homogeneous barrier is used: -1 automatic, 0 no, 1 yes."),
    integer("BarOrder", -1, 1, -1, "Ordering in the barrier method: -1 automatic, 0 minimum degree, 1 dissection."),
    integer("Crossover", -1, 5, -1, "How a barrier solution becomes a basic one: -1 automatic, 0 not at all.",
            "HiGHS option run_crossover: off for 0, on otherwise."),
    integer("CrossoverBasis", -1, 1, -1, "First basis of the crossover: -1 automatic, 0 quick, 1 more stable."),
    integer("QCPDual", 0, 1, 0, "Whether dual values of models with quadratic constraints are computed.",
            "With 1, QCPi, Pi and RC of continuous models with convex quadratic constraints."),

    // MIP
    integer("BranchDir", -1, 1, 0, "Child that a MIP search explores first: -1 down, 0 automatic, 1 up."),
    integer("DegenMoves", -1, kMaxInt, -1, "Most degenerate moves at the root of a MIP search; -1 automatic."),
    integer("ConcurrentJobs", 0, kMaxInt, 0, "Number of machines of a concurrent solve."),
    integer("ConcurrentMIP", 1, 64, 1, "Number of independent MIP searches in parallel."),
    integer("Disconnected", -1, 2, -1, "How independent parts of a MIP are used: -1 automatic, 0 off, 1, 2 more."),
    integer("DistributedMIPJobs", 0, kMaxInt, 0, "Number of machines of a distributed MIP search."),
    real("Heuristics", 0, 1, 0.05, "Share of the time of a MIP search that heuristics take.",
         "HiGHS option mip_heuristic_effort."),
    real("ImproveStartGap", 0, kInf, 0, "Relative gap at which a MIP search turns to improving its solution."),
    real("ImproveStartNodes", 0, kInf, kInf, "Node count at which a MIP search turns to improving its solution."),
    real("ImproveStartTime", 0, kInf, kInf, "Seconds after which a MIP search turns to improving its solution."),
    integer("MinRelNodes", -1, kMaxInt, -1,
            "Nodes of the heuristic that looks for a minimum relaxation; -1 automatic."),
    integer("MIPFocus", 0, 3, 0, "Aim of a MIP search: 0 balance, 1 solutions, 2 proof of optimality, 3 the bound."),
    integer("MIQCPMethod", -1, 1, -1, "MIP with quadratic constraints: -1 automatic, 0 by QCP, 1 by linear cuts."),
    integer("NLPHeur", 0, 1, 1, "Whether a nonlinear heuristic runs on nonconvex quadratic models."),
    text("NodefileDir", ".", "Folder of the files that MIP nodes are moved to."),
    real("NodefileStart", 0, kInf, kInf, "Gigabytes of node memory at which nodes are moved to files."),
    integer("NodeMethod", -1, 2, -1,
            "Method for the relaxations of MIP nodes: -1 automatic, 0 primal, 1 dual, 2 barrier."),
    integer(
        "NonConvex", -1, 2, -1, "Nonconvex quadratic models: -1 automatic, 0 and 1 refused, 2 solved.",
        "0 and 1 refuse forms that aren't convex and that PreQLinearize leaves; -1 and 2 branch on their products."),
    real("NoRelHeurTime", 0, kInf, 0, "Seconds of the heuristic that runs before the root relaxation."),
    real("NoRelHeurWork", 0, kInf, 0, "Work of the heuristic that runs before the root relaxation."),
    integer("OBBT", -1, 3, -1, "Bound tightening by optimization: -1 automatic, 0 off, 1 to 3 more."),
    integer("PartitionPlace", 0, 31, 15, "Bits that tell when the partition heuristic runs (attribute Partition)."),
    integer("PumpPasses", -1, kMaxInt, -1, "Passes of the feasibility pump heuristic; -1 automatic."),
    integer("RINS", -1, kMaxInt, -1, "Nodes between runs of the RINS heuristic: -1 automatic, 0 off."),
    text("SolFiles", "", "Prefix of solution files written for each improving MIP solution; empty for none.",
         "Each improving solution of a MIP search is written to the prefix, _, its number and .sol."),
    integer("SolutionNumber", 0, kMaxInt, 0, "Solution of the pool that Xn and PoolObjVal mean, 0 the best.",
            "Selects what the attributes Xn and PoolObjVal read."),
    integer("SubMIPNodes", 0, kMaxInt, 500, "Most nodes of a heuristic that solves a smaller MIP."),
    integer("Symmetry", -1, 2, -1, "Symmetry detection: -1 automatic, 0 off, 1 moderate, 2 aggressive.",
            "HiGHS option mip_detect_symmetry: off for 0, on otherwise."),
    integer("VarBranch", -1, 3, -1,
            "Branching rule: -1 automatic, 0 pseudo reduced cost, 1 pseudo shadow price, "
            "2 most infeasible, 3 strong branching."),
    integer("ZeroObjNodes", -1, kMaxInt, -1, "Nodes of the heuristic that leaves the objective out; -1 automatic."),

    // Tuning
    integer("TuneCriterion", -1, 3, -1, "What tuning improves: -1 automatic, 0 time, 1 gap, 2 best value, 3 bound."),
    integer("TuneJobs", 0, kMaxInt, 0, "Number of machines of a tuning run."),
    integer("TuneMetric", -1, 1, -1, "How tuning joins results of several runs: -1 automatic, 0 mean, 1 maximum."),
    integer("TuneOutput", 0, 3, 2, "Log of tuning: 0 none, 1 improvements, 2 each trial, 3 the solver's log too."),
    integer("TuneResults", -2, kMaxInt, -1, "Number of parameter sets that tuning keeps: -1 one for each set size."),
    real("TuneTimeLimit", -1, kInf, -1, "Most seconds of tuning; -1 automatic."),
    integer("TuneTrials", 0, kMaxInt, 0, "Runs with different seeds for each parameter set; 0 automatic."),
    real("TuneCleanup", 0, 1, 0, "Share of the tuning time for removing changes that don't matter."),
    real("TuneTargetMIPGap", 0, kInf, 0, "Gap at which tuning takes a set as good enough."),
    real("TuneTargetTime", 0, kInf, 5e-3, "Seconds at which tuning takes a set as good enough."),

    // Multiple solutions
    integer("PoolSearchMode", 0, 2, 0, "Pool of MIP solutions: 0 as found, 1 look for more, 2 the best ones."),
    integer("PoolSolutions", 1, kMaxInt, 10, "Most solutions that the pool keeps.",
            "The pool of solutions that a MIP search found keeps so many of the best."),
    real("PoolGap", 0, kInf, kInf, "Relative gap to the best solution beyond which the pool keeps none.",
         "Solutions beyond the gap leave the pool at the end of a solve."),
    real("PoolGapAbs", 0, kInf, kInf, "Absolute gap to the best solution beyond which the pool keeps none.",
         "Solutions beyond the gap leave the pool at the end of a solve."),

    // MIP cuts
    cuts("BQPCuts", "Boolean quadric polytope cuts."),
    integer("Cuts", -1, 3, -1, "All cuts: -1 automatic, 0 off, 1 conservative, 2 aggressive, 3 very aggressive."),
    cuts("CliqueCuts", "Clique cuts."),
    cuts("CoverCuts", "Cover cuts."),
    cuts("FlowCoverCuts", "Flow cover cuts."),
    cuts("FlowPathCuts", "Flow path cuts."),
    cuts("GUBCoverCuts", "Cover cuts over generalized upper bounds."),
    cuts("ImpliedCuts", "Implied bound cuts."),
    cuts("InfProofCuts", "Infeasibility proof cuts."),
    cuts("MIPSepCuts", "Cuts separated by a smaller MIP."),
    cuts("MIRCuts", "Mixed-integer rounding cuts."),
    cuts("ModKCuts", "Mod-k cuts."),
    cuts("NetworkCuts", "Network cuts."),
    cuts("ProjImpliedCuts", "Projected implied bound cuts."),
    cuts("PSDCuts", "Cuts from positive semidefinite matrices."),
    cuts("LiftProjectCuts", "Lift-and-project cuts."),
    cuts("RelaxLiftCuts", "Relax-and-lift cuts."),
    cuts("RLTCuts", "Cuts of the reformulation-linearization technique."),
    cuts("StrongCGCuts", "Strong Chvatal-Gomory cuts."),
    cuts("SubMIPCuts", "Cuts from a smaller MIP."),
    cuts("ZeroHalfCuts", "Zero-half cuts."),
    integer("CutAggPasses", -1, kMaxInt, -1, "Most aggregations of constraints for one cut; -1 automatic."),
    integer("CutPasses", -1, kMaxInt, -1, "Most rounds of cuts at the root; -1 automatic."),
    integer("GomoryPasses", -1, kMaxInt, -1, "Most rounds of Gomory cuts; -1 automatic."),

    // Distributed, cloud and compute server
    text("WorkerPassword", "", "Password of the machines of a distributed solve.", "", kOpaque),
    text("WorkerPool", "", "Addresses of the machines of a distributed solve."),
    text("ComputeServer", "", "Address of a compute server."),
    text("ServerPassword", "", "Password of a compute server.", "", kOpaque),
    integer("ServerTimeout", -1, kMaxInt, 60, "Seconds to wait for an answer of a server; -1 no limit."),
    text("CSRouter", "", "Address of a router in front of compute servers."),
    text("CSGroup", "", "Group of machines that a job may run on."),
    integer("CSPriority", -100, 100, 0, "Priority of a job on a compute server."),
    real("CSQueueTimeout", -1, kInf, -1, "Seconds that a job may wait in the queue; -1 no limit."),
    integer("CSTLSInsecure", 0, 1, 0, "Whether the certificate of a server is left unchecked."),
    text("CSAppName", "", "Name of the application, for the lists of a compute server."),
    {"CSClientLog", 1, 0, 3, 0, "", kSilent, "Bits that tell which messages of the connection are logged.", ""},
    integer("CSIdleTimeout", -1, kMaxInt, -1, "Seconds without work after which a job ends; -1 no limit."),
    text("CloudAccessID", "", "Access identifier of a cloud account.", "", kOpaque),
    text("CloudSecretKey", "", "Secret key of a cloud account.", "", kOpaque),
    text("CloudPool", "", "Pool of cloud machines that a job runs on."),
    text("CloudHost", "", "Address of the cloud service.", "", kSilent),
    text("JobID", "", "Identifier of the job on a compute server.", "", kSilent),
    text("CSAPIAccessID", "", "Access identifier of a cluster manager.", "", kOpaque),
    text("CSAPISecret", "", "Secret key of a cluster manager.", "", kOpaque),
    text("CSAuthToken", "", "Token of a session on a cluster manager.", "", kOpaque | kSilent),
    integer("CSBatchMode", 0, 1, 0, "Whether models may be handed over as batches."),
    text("CSManager", "", "Address of a cluster manager."),
    text("UserName", "", "Name of the user on a cluster manager."),

    // Others
    integer("AggFill", -1, kMaxInt, -1, "Most fill of an aggregation in presolve; -1 automatic.",
            "HiGHS option presolve_substitution_maxfillin, unless -1."),
    integer("Aggregate", 0, 2, 1, "Aggregation in presolve: 0 off, 1 moderate, 2 aggressive."),
    integer("DisplayInterval", 1, kMaxInt, 5, "Least seconds between two progress lines of the log.",
            "HiGHS option mip_min_logging_interval; of other progress lines those in between are left out."),
    integer("DualReductions", 0, 1, 1, "Whether presolve may use the objective to reduce the model.",
            "With 0 an infeasible or unbounded model is told apart, by a solve without objective if need be, instead "
            "of ending with status INF_OR_UNBD."),
    real("FeasRelaxBigM", 0, kInf, 1e6, "Largest relaxation of a constraint when violations are counted."),
    real("FuncPieceError", 1e-6, 1e6, 1e-3, "Error of a piecewise-linear approximation of a function."),
    real("FuncPieceLength", 1e-5, 1e6, 1e-2, "Length of the pieces of an approximation."),
    real("FuncPieceRatio", -1, 1, -1, "Where an approximation lies: 0 below, 1 above, -1 automatic."),
    integer("FuncPieces", -2, kMaxInt, 0,
            "Pieces of an approximation: a number, 0 automatic, -1 absolute, -2 relative error."),
    real("FuncMaxVal", 0, kInf, 1e6, "Largest value that variables of an approximated function may take."),
    integer("IISMethod", -1, 3, -1,
            "How an infeasible subsystem is found: -1 automatic, 0 to 3 more thorough or quicker."),
    integer("IntegralityFocus", 0, 1, 0, "Whether solutions that abuse the integrality tolerance are avoided."),
    integer("JSONSolDetail", 0, 1, 0, "How much a solution as JSON text holds: 0 less, 1 more."),
    integer("LazyConstraints", 0, 1, 0, "Whether a callback adds lazy constraints."),
    text("LogFile", "", "File that the log is appended to; empty for none.",
         "Opened when it is set, or at the start of the environment; all log text goes to it while OutputFlag is 1."),
    integer("LogToConsole", 0, 1, 1, "Whether the log is shown on the console.",
            "With 0 the log goes to LogFile only."),
    integer(
        "Method", -1, 5, -1,
        "Method for LP models and root relaxations: -1 automatic, 0 primal simplex, 1 dual simplex, 2 barrier, "
        "3 concurrent, 4 and 5 deterministic concurrent.",
        "HiGHS options solver, mip_lp_solver and simplex_strategy; 3 runs dual simplex and barrier on an LP at "
        "once and takes the first to end, 4 and 5 are the dual simplex. Barrier is IPX for an LP, as HiPO took longer "
        "for all that were measured, and HiPO for a quadratic objective; there 0 and 1 begin with active sets, and "
        "otherwise those come first where most products of two variables have a coefficient."),
    integer("NumericFocus", 0, 3, 0, "Care for numerical trouble: 0 automatic, 1 to 3 more.",
            "HiGHS options factor_pivot_threshold and simplex_update_limit get more careful values."),
    integer("MultiObjMethod", -1, 2, -1,
            "Warm start between several objectives: -1 automatic, 0 primal, 1 dual, 2 none."),
    integer("MultiObjPre", -1, 2, -1, "Presolve before several objectives: -1 automatic, 0 off, 1, 2 more."),
    integer("IgnoreNames", 0, 1, 0, "Whether names of variables and constraints are dropped.",
            "With 1 names that are passed in or read from a file are not stored."),
    integer("ObjNumber", 0, kMaxInt, 0, "Objective that the ObjN attributes mean.",
            "Selects what the attributes ObjN, ObjNCon, ObjNPriority, ObjNWeight, ObjNRelTol, ObjNAbsTol, ObjNVal and "
            "ObjNName read and write."),
    integer("OutputFlag", 0, 1, 1, "Whether there is any log.", "With 0 nothing is logged anywhere."),
    integer("PreCrush", 0, 1, 0, "Whether presolve keeps what user cuts need."),
    integer("PreDepRow", -1, 1, -1, "Removal of dependent rows in presolve: -1 automatic, 0 no, 1 yes."),
    integer("PreDual", -1, 2, -1, "Whether presolve takes the dual: -1 automatic, 0 no, 1 yes, 2 quick test."),
    integer("PrePasses", -1, kMaxInt, -1, "Most passes of presolve; -1 automatic.",
            "0 turns presolve off; a number limits its reductions by HiGHS option presolve_reduction_limit, a "
            "twentieth of the rows and columns for each pass."),
    integer("PreQLinearize", -1, 2, -1, "Linearization of quadratic terms in presolve: -1 automatic, 0 off, 1, 2.",
            "Products with a binary factor become linear: with 1 in each form, with -1 and 2 in those that aren't "
            "convex, with 0 only in equations."),
    integer("Presolve", -1, 2, -1, "Presolve: -1 automatic, 0 off, 1 conservative, 2 aggressive.",
            "HiGHS option presolve: off for 0, its choice for -1, on otherwise."),
    real("PreSOS1BigM", -1, 1e10, -1, "Largest bound for turning SOS1 into binaries: -1 automatic, 0 never."),
    integer("PreSOS1Encoding", -1, 3, -1, "How SOS1 become binaries: -1 automatic, 0 to 3 the encodings."),
    real("PreSOS2BigM", -1, 1e10, -1, "Largest bound for turning SOS2 into binaries: -1 automatic, 0 never."),
    integer("PreSOS2Encoding", -1, 3, -1, "How SOS2 become binaries: -1 automatic, 0 to 3 the encodings."),
    integer("PreSparsify", -1, 2, -1, "Sparsification in presolve: -1 automatic, 0 off, 1 MIP only, 2 all models."),
    integer("PreMIQCPForm", -1, 2, -1, "Form of quadratic constraints in a MIP: -1 automatic, 0 to 2 the forms."),
    integer("Record", 0, 1, 0, "Whether the calls of the program are recorded."),
    text("ResultFile", "", "File that is written when a solve ends, its kind by the ending; empty for none.",
         "Written at the end of each solve as a call of the write function would."),
    integer("ScenarioNumber", 0, kMaxInt, 0, "Scenario that the ScenN attributes mean."),
    integer("Seed", 0, kMaxInt, 0, "Seed of random choices; equal seeds give equal runs.", "HiGHS option random_seed."),
    integer("StartNodeLimit", -3, kMaxInt, -1, "Most nodes for completing a partial MIP start; -1 as SubMIPNodes."),
    integer("StartNumber", -1, kMaxInt, 0, "MIP start that the attribute Start means; -1 appends one."),
    integer("Threads", 0, 1024, 0, "Number of threads of a solve; 0 automatic.", "HiGHS option threads."),
    integer("UpdateMode", 0, 1, 1, "Whether new variables and constraints can be used before the update: 0 no, 1 yes.",
            "With 1 their handles can be used at once, and ranges get a helper variable; with 0 handles are pending "
            "until the update. A change counts for handles made after the next update, at the latest."),
};

constexpr const char* kNames[] = {
#define ZELVAN_PARAM(name) #name,
#include "param/names.inc"
#undef ZELVAN_PARAM
};
constexpr std::size_t kCount = std::size(kNames);

constexpr bool in_listed_order() {
    if (std::size(kParams) != kCount) return false;
    for (std::size_t i = 0; i < kCount; ++i)
        if (std::string_view(kParams[i].name) != kNames[i]) return false;
    return true;
}
static_assert(in_listed_order(), "the table must follow names.inc");

constexpr NameIndex<kCount> kIndex{std::to_array(kNames)};

}  // namespace

int num_params() { return static_cast<int>(kCount); }

const ParamSpec& param_spec(int i) { return kParams[i]; }

int find_param(std::string_view name) { return kIndex.find(name); }

}  // namespace zelvan
