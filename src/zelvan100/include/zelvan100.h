/* zelvan100: solver library for linear and mixed-integer optimization.
 *
 * This header is the whole interface. It compiles as C11 and as C++.
 *
 * Conventions
 *   - A call returns 0 on success and otherwise one of the ZVN_ERROR_ codes. A failed call changes
 *     nothing and leaves a sentence that names the thing at fault, read with ZVNgeterrormsg
 *     (environment) or ZVNgetmerrormsg (model). Functions that return something else say so.
 *   - Handles are opaque. NULL, freed and wrong handles are refused with ZVN_ERROR_NULL_ARGUMENT.
 *   - Indices and most counts are 32-bit ints from 0; values are doubles; senses and variable types
 *     are single characters; strings are NUL-terminated UTF-8.
 *   - Arrays belong to the caller and are read or filled during the call only. A string handed out through a
 *     `char **` stays the library's: until the next call on the object, a name of an attribute or parameter for good.
 *   - Changes to a model are queued and take effect at ZVNupdatemodel, which ZVNoptimize and
 *     ZVNwrite also run. Until then queries show the model as of the last update.
 *   - Bounds of magnitude 1e20 and above mean infinity; ZVN_INFINITY is the value to pass.
 *   - One object may be used by one thread at a time, with the exception of ZVNterminate. Different
 *     models may be used, and solved, from different threads at once.
 */
#ifndef ZELVAN100_H
#define ZELVAN100_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define ZVN_API __attribute__((visibility("default")))
#else
#define ZVN_API
#endif

typedef struct ZVNenv ZVNenv;     /* an environment: parameters, log, error text */
typedef struct ZVNmodel ZVNmodel; /* a model, with an environment of its own */

#define ZVN_VERSION_MAJOR 10
#define ZVN_VERSION_MINOR 0
#define ZVN_VERSION_TECHNICAL 3

#define ZVN_INFINITY 1e100
#define ZVN_UNDEFINED 1e101
#define ZVN_MAXINT 2000000000
#define ZVN_MAX_NAMELEN 255  /* longest name of a variable or constraint, in bytes */
#define ZVN_MAX_STRLEN 512   /* size of a buffer that holds any short string, with its NUL */
#define ZVN_MAX_TAGLEN 10240 /* longest tag, in bytes */

/* Error codes */
#define ZVN_ERROR_OUT_OF_MEMORY 10001
#define ZVN_ERROR_NULL_ARGUMENT 10002
#define ZVN_ERROR_INVALID_ARGUMENT 10003
#define ZVN_ERROR_UNKNOWN_ATTRIBUTE 10004
#define ZVN_ERROR_DATA_NOT_AVAILABLE 10005
#define ZVN_ERROR_INDEX_OUT_OF_RANGE 10006
#define ZVN_ERROR_UNKNOWN_PARAMETER 10007
#define ZVN_ERROR_VALUE_OUT_OF_RANGE 10008
#define ZVN_ERROR_CALLBACK 10011
#define ZVN_ERROR_FILE_READ 10012
#define ZVN_ERROR_FILE_WRITE 10013
#define ZVN_ERROR_NUMERIC 10014
#define ZVN_ERROR_IIS_NOT_INFEASIBLE 10015
#define ZVN_ERROR_NOT_FOR_MIP 10016
#define ZVN_ERROR_OPTIMIZATION_IN_PROGRESS 10017
#define ZVN_ERROR_DUPLICATES 10018
#define ZVN_ERROR_NODEFILE 10019
#define ZVN_ERROR_Q_NOT_PSD 10020
#define ZVN_ERROR_QCP_EQUALITY_CONSTRAINT 10021
#define ZVN_ERROR_NETWORK 10022
#define ZVN_ERROR_JOB_REJECTED 10023
#define ZVN_ERROR_NOT_SUPPORTED 10024
#define ZVN_ERROR_EXCEED_2B_NONZEROS 10025
#define ZVN_ERROR_INVALID_PIECEWISE_OBJ 10026
#define ZVN_ERROR_UPDATEMODE_CHANGE 10027
#define ZVN_ERROR_CLOUD 10028
#define ZVN_ERROR_MODEL_MODIFICATION 10029
#define ZVN_ERROR_CSWORKER 10030
#define ZVN_ERROR_TUNE_MODEL_TYPES 10031
#define ZVN_ERROR_SECURITY 10032
#define ZVN_ERROR_NOT_IN_MODEL 20001
#define ZVN_ERROR_FAILED_TO_CREATE_MODEL 20002
#define ZVN_ERROR_INTERNAL 20003

/* Values of the attribute Status */
#define ZVN_LOADED 1
#define ZVN_OPTIMAL 2
#define ZVN_INFEASIBLE 3
#define ZVN_INF_OR_UNBD 4
#define ZVN_UNBOUNDED 5
#define ZVN_CUTOFF 6
#define ZVN_ITERATION_LIMIT 7
#define ZVN_NODE_LIMIT 8
#define ZVN_TIME_LIMIT 9
#define ZVN_SOLUTION_LIMIT 10
#define ZVN_INTERRUPTED 11
#define ZVN_NUMERIC 12
#define ZVN_SUBOPTIMAL 13
#define ZVN_INPROGRESS 14
#define ZVN_USER_OBJ_LIMIT 15
#define ZVN_WORK_LIMIT 16
#define ZVN_MEM_LIMIT 17

/* Variable types, senses, basis statuses */
#define ZVN_CONTINUOUS 'C'
#define ZVN_BINARY 'B'
#define ZVN_INTEGER 'I'
#define ZVN_SEMICONT 'S'
#define ZVN_SEMIINT 'N'
#define ZVN_LESS_EQUAL '<'
#define ZVN_GREATER_EQUAL '>'
#define ZVN_EQUAL '='
#define ZVN_RANGE 'R' /* sense of a two-sided row without helper variable, as read back; see ZVNaddrangeconstr */
#define ZVN_MINIMIZE 1
#define ZVN_MAXIMIZE -1
#define ZVN_BASIC 0
#define ZVN_NONBASIC_LOWER -1
#define ZVN_NONBASIC_UPPER -2
#define ZVN_SUPERBASIC -3

/* ---- Environments, messages, version ------------------------------------------------------- */

/* Receives the text of one log message, returns 0. In a solve on any thread, in other calls as their last act. */
typedef int (*ZVNlogcallback)(const char* message, void* userdata);

/* Create an environment that is not started: parameters can be set, models can't be made yet.
 *   env        receives the handle, NULL on failure
 *   apitype    0
 *   major, minor, technical   the version that the caller was built for: ZVN_VERSION_...
 *   server, router, password, group, priority, timeout, callback   for remote services, which this
 *              library doesn't have: NULL or 0, anything else is ZVN_ERROR_NOT_SUPPORTED.
 * Another major version is ZVN_ERROR_INVALID_ARGUMENT. */
ZVN_API int ZVNemptyenvadvinternal(ZVNenv** env, int apitype, int major, int minor, int technical, const char* server,
                                   const char* router, const char* password, const char* group, int priority,
                                   int timeout, void* callback);
/* Start an environment: opens its log file. Starting twice is no error. */
ZVN_API int ZVNstartenv(ZVNenv* env);
/* Free an environment. Models made on it stay usable: each has a copy. The handle that ZVNgetenv
 * returns is not freed by the caller. */
ZVN_API void ZVNfreeenv(ZVNenv* env);
/* Text of the latest error of an environment, or of a model; for an invalid handle the text of the
 * latest refusal of an invalid handle on this thread. Never NULL. */
ZVN_API const char* ZVNgeterrormsg(ZVNenv* env);
ZVN_API const char* ZVNgetmerrormsg(ZVNmodel* model);
/* Write a text to the log of an environment, as it stands. */
ZVN_API void ZVNmsg(ZVNenv* env, const char* message);
/* Set (or clear, with NULL) the function that receives log messages. Without one they go to the
 * standard output. Both ways ask OutputFlag and LogToConsole; LogFile receives them besides. */
ZVN_API int ZVNsetlogcallbackfuncenv(ZVNenv* env, ZVNlogcallback callback, void* userdata);
ZVN_API int ZVNsetlogcallbackfunc(ZVNmodel* model, ZVNlogcallback callback, void* userdata);
/* Communication statistics of remote services: all zero, as there are none. */
ZVN_API int ZVNgetcommstats(ZVNenv* env, double* recvtime, double* recvbytes, double* recvmsgs, double* sendtime,
                            double* sendbytes, double* sendmsgs);
ZVN_API void ZVNversion(int* major, int* minor, int* technical);
/* Name of the platform that the library was built for, such as "linux64". */
ZVN_API const char* ZVNplatform(void);
/* Whether the process runs in a container: 0 or 1. */
ZVN_API int ZVNisContainer(void);
/* Release a string that a function handed to the caller for keeping. */
ZVN_API void ZVNfree(void* text);

/* ---- Parameters ------------------------------------------------------------------------------- */

/* Names are accepted in any letter case. Types: 1 int, 2 double, 3 string. Flags: bit 16 silent (not
 * listed among changes), bit 32 opaque (its value is not shown). */
ZVN_API int ZVNgetnumparams(ZVNenv* env);
ZVN_API int ZVNgetparamname(ZVNenv* env, int i, char** name);
/* The type, negative for an unknown name. */
ZVN_API int ZVNgetparamtype(ZVNenv* env, const char* name);
ZVN_API int ZVNgetparamflags(ZVNenv* env, const char* name, unsigned int* flags);
/* One sentence that says what the parameter is for, and one that says what it drives here (the
 * second is "" when nothing under the library can honour the parameter). */
ZVN_API int ZVNgetparamhelp(ZVNenv* env, const char* name, const char** purpose, const char** effect);
/* Current value, minimum, maximum, default; any pointer may be NULL. */
ZVN_API int ZVNgetintparaminfo(ZVNenv* env, const char* name, int* value, int* minimum, int* maximum, int* deflt);
ZVN_API int ZVNgetdblparaminfo(ZVNenv* env, const char* name, double* value, double* minimum, double* maximum,
                               double* deflt);
/* Buffers of ZVN_MAX_STRLEN bytes; longer values are cut. */
ZVN_API int ZVNgetstrparaminfo(ZVNenv* env, const char* name, char* value, char* deflt);
/* Copy at most `size` bytes, NUL included; *length receives the length of the whole value. */
ZVN_API int ZVNgetlongstrparam(ZVNenv* env, const char* name, char* value, int size, int* length);
ZVN_API int ZVNsetintparam(ZVNenv* env, const char* name, int value);
ZVN_API int ZVNsetdblparam(ZVNenv* env, const char* name, double value);
ZVN_API int ZVNsetstrparam(ZVNenv* env, const char* name, const char* value);
/* Keep the current value of a parameter out of tuning. There is no tuning yet: the name is checked. */
ZVN_API int ZVNfixtuneparam(ZVNenv* env, const char* name);
ZVN_API int ZVNresetparams(ZVNenv* env);
/* Read or write a .prm file: lines of name and value, comments from '#'. A file with a fault sets
 * nothing. Only values that differ from their default are written, passwords and keys not at all. */
ZVN_API int ZVNreadparams(ZVNenv* env, const char* filename);
ZVN_API int ZVNwriteparams(ZVNenv* env, const char* filename);

/* ---- Models: life, files ------------------------------------------------------------------------ */

/* Create a model with numvars queued variables; arrays as in ZVNaddvars. */
ZVN_API int ZVNnewmodel(ZVNenv* env, ZVNmodel** model, const char* name, int numvars, const double* obj,
                        const double* lb, const double* ub, const char* vtype, char* const* varnames);
/* Free a model. A running solve of it must have ended. */
ZVN_API void ZVNfreemodel(ZVNmodel* model);
/* A copy of the model as of its last update, parameters included; NULL on failure. */
ZVN_API ZVNmodel* ZVNcopymodel(ZVNmodel* model);
/* The model's own environment; NULL for an invalid handle. */
ZVN_API ZVNenv* ZVNgetenv(ZVNmodel* model);
/* Apply the queued changes: additions, then attribute writes in their order, then deletions. All
 * indices passed since the last update mean the numbering of that update, with queued additions
 * numbered behind it. */
ZVN_API int ZVNupdatemodel(ZVNmodel* model);
/* Discard the solution; with clearall also starts, hints and other information for the solver. */
ZVN_API int ZVNreset(ZVNmodel* model, int clearall);
/* Read a model from a file: .mps, .lp, each also with .gz behind. */
ZVN_API int ZVNreadmodel(ZVNenv* env, const char* filename, ZVNmodel** model);
/* Read data into a model: .prm, .mst, .sol, .bas, ... by the name's ending. */
ZVN_API int ZVNread(ZVNmodel* model, const char* filename);
/* Write the model or data of it, by the name's ending. An existing file stays as it was on failure. Models and
 * priorities (.ord) are written with queued changes, which are applied; what belongs to a solution (.sol, .mst,
 * .bas, .json) as of that solution, with the changes left queued. */
ZVN_API int ZVNwrite(ZVNmodel* model, const char* filename);
/* Whether the name's ending is that of a model file, or of a file of attribute values that users set. */
ZVN_API int ZVNismodelfile(const char* filename);
ZVN_API int ZVNisattrfile(const char* filename);
/* The solution as JSON text, released with ZVNfree. */
ZVN_API int ZVNgetjsonsolution(ZVNmodel* model, char** text);

/* ---- Building ----------------------------------------------------------------------------------- */

/* Queue one variable with numnz entries in existing or queued rows. name NULL or "": a default name. */
ZVN_API int ZVNaddvar(ZVNmodel* model, int numnz, const int* ind, const double* val, double obj, double lb, double ub,
                      char vtype, const char* name);
/* Queue numvars variables. beg, ind, val hold numnz column entries (beg[j] is the start of column j);
 * NULL with numnz 0. Each other array may be NULL: obj 0, lb 0, ub infinite, vtype 'C', no names. */
ZVN_API int ZVNaddvars(ZVNmodel* model, int numvars, int numnz, const int* beg, const int* ind, const double* val,
                       const double* obj, const double* lb, const double* ub, const char* vtype, char* const* names);
/* Queue the row  sum val[k] x[ind[k]]  sense  rhs. Indices must be distinct (see ZVNclean2). */
ZVN_API int ZVNaddconstr(ZVNmodel* model, int numnz, const int* ind, const double* val, char sense, double rhs,
                         const char* name);
/* Queue numconstrs rows; rbeg[i] is the start of row i in ind and val. names may be NULL. */
ZVN_API int ZVNaddconstrs(ZVNmodel* model, int numconstrs, int numnz, const int* rbeg, const int* ind,
                          const double* val, const char* sense, const double* rhs, char* const* names);
/* Queue the row  lower <= sum val[k] x[ind[k]] <= upper; sides beyond +-1e25 count as infinite.
 * Under UpdateMode 1, a row with both sides finite (or both infinite) becomes
 * sum + s = upper with a helper variable 0 <= s <= upper - lower, which the update appends behind all
 * other new variables. Under UpdateMode 0 it stays one two-sided row, whose Sense reads as 'R', RHS as
 * its upper side. A row with one finite side becomes a one-sided row. lower > upper is refused. */
ZVN_API int ZVNaddrangeconstr(ZVNmodel* model, int numnz, const int* ind, const double* val, double lower, double upper,
                              const char* name);
/* Queue the quadratic constraint  sum lval[k] x[lind[k]] + sum qval[k] x[qrow[k]] x[qcol[k]]  sense  rhs, with sense
 * '<', '>' or '='. Linear indices must be distinct; quadratic terms of one pair, in either order, are added up. */
ZVN_API int ZVNaddqconstr(ZVNmodel* model, int numlnz, const int* lind, const double* lval, int numqnz, const int* qrow,
                          const int* qcol, const double* qval, char sense, double rhs, const char* name);
/* Merge duplicate indices (at the place of the first) and drop entries of value 0, in place. */
ZVN_API int ZVNclean2(int* numnz, int* ind, double* val);
/* The same for quadratic terms, (i, j) and (j, i) being one. */
ZVN_API int ZVNclean3(int* numqnz, int* qrow, int* qcol, double* qval);
/* Queue numsos special ordered sets. types[k] is 1 (at most one member is not 0) or 2 (at most two, which are
 * neighbours in the order of the weights); beg[k] is the start of set k in ind (variables) and weight. */
ZVN_API int ZVNaddsos(ZVNmodel* model, int numsos, int nummembers, const int* types, const int* beg, const int* ind,
                      const double* weight);
/* Sets start .. start+num-1. types and beg (num entries each) may be NULL; with ind or weight NULL members aren't
 * given. */
ZVN_API int ZVNgetsos(ZVNmodel* model, int* nummembers, int* types, int* beg, int* ind, double* weight, int start,
                      int num);
/* Queue deletions, by the numbering of the last update. */
ZVN_API int ZVNdelvars(ZVNmodel* model, int num, const int* ind);
ZVN_API int ZVNdelconstrs(ZVNmodel* model, int num, const int* ind);
ZVN_API int ZVNdelsos(ZVNmodel* model, int num, const int* ind);
ZVN_API int ZVNdelqconstrs(ZVNmodel* model, int num, const int* ind);
/* This kind can't be added yet, so every index is out of range. */
ZVN_API int ZVNdelgenconstrs(ZVNmodel* model, int num, const int* ind);
/* Index of the variable or constraint of that name as of the last update, -1 when there is none. */
ZVN_API int ZVNgetvarbyname(ZVNmodel* model, const char* name, int* index);
ZVN_API int ZVNgetconstrbyname(ZVNmodel* model, const char* name, int* index);
ZVN_API int ZVNgetqconstrbyname(ZVNmodel* model, const char* name, int* index);
/* Rows start .. start+num-1. With ind or val NULL only *numnz and beg (if not NULL) are set. */
ZVN_API int ZVNgetconstrs(ZVNmodel* model, int* numnz, int* beg, int* ind, double* val, int start, int num);
/* Quadratic constraint `qconstr`. *numlnz and *numqnz receive the numbers of terms; each array may be NULL. */
ZVN_API int ZVNgetqconstr(ZVNmodel* model, int qconstr, int* numlnz, int* lind, double* lval, int* numqnz, int* qrow,
                          int* qcol, double* qval);
/* Replace the objective by  constant + sum lval[k] x[lind[k]] + sum qval[k] x[qrow[k]] x[qcol[k]]: sense 1 or -1, 0
 * leaves ModelSense; duplicates are added up. */
ZVN_API int ZVNsetobjective(ZVNmodel* model, int sense, double constant, int lnz, const int* lind, const double* lval,
                            int qnz, const int* qrow, const int* qcol, const double* qval);
/* Set objective number `index` of a model with several objectives; see the ObjN... attributes. */
ZVN_API int ZVNsetobjectiven(ZVNmodel* model, int index, int priority, double weight, double abstol, double reltol,
                             const char* name, double constant, int lnz, const int* lind, const double* lval);
/* Quadratic objective terms. *qnz receives their number (attribute NumQNZs); each array may be NULL. */
ZVN_API int ZVNgetq(ZVNmodel* model, int* qnz, int* qrow, int* qcol, double* qval);
/* Piecewise-linear objective term of a variable: `count` points with x not decreasing; at most two
 * points share an x (a jump). count 0 removes the term. Setting Obj on the variable removes it too. */
ZVN_API int ZVNsetpwlobj(ZVNmodel* model, int var, int count, const double* x, const double* y);
/* *npoints receives the number of points; x and y are filled unless NULL. */
ZVN_API int ZVNgetpwlobj(ZVNmodel* model, int var, int* npoints, double* x, double* y);

/* ---- Attributes ----------------------------------------------------------------------------------- */

/* Names are accepted in any letter case. *type: 0 char, 1 int, 2 double, 3 string. *kind: 0 model,
 * 1 variable, 2 linear constraint, 3 SOS, 4 quadratic constraint, 5 general constraint.
 *
 * Measures of the solution (BoundVio, ...): the index is -1 where nothing is off. That of a violated constraint counts
 * linear ones, then quadratic ones, then SOS. Indices of the dual ones mean constraint i, or variable i - NumConstrs
 * from NumConstrs on; ComplVioIndex means variable i, or constraint i - NumVars from NumVars on. Scaled measures belong
 * to the model whose constraints are divided by their largest coefficient, and whose variables then take units that
 * make theirs 1. Ranges such as MinCoeff leave out zeros and infinities, and are 0 where nothing is left.
 *
 * VarHintVal, VarHintPri, BranchPriority, Partition, PoolIgnore, PStart, DStart and Lazy are kept with the
 * model but don't act on a solve yet. NumQCNZs counts quadratic terms; IsQP is 0 where IsQCP is 1. */
ZVN_API int ZVNgetnumattributes(ZVNmodel* model);
ZVN_API int ZVNgetattrname(ZVNmodel* model, int i, char** name);
ZVN_API int ZVNgetattrinfo(ZVNmodel* model, const char* name, int* type, int* kind, int* settable);
/* Whether the attribute can be read now: 0 or 1. */
ZVN_API int ZVNisattravailable(ZVNmodel* model, const char* name);
ZVN_API int ZVNprefetchattr(ZVNmodel* model, const char* name);

ZVN_API int ZVNgetintattr(ZVNmodel* model, const char* name, int* value);
ZVN_API int ZVNgetdblattr(ZVNmodel* model, const char* name, double* value);
ZVN_API int ZVNgetstrattr(ZVNmodel* model, const char* name, char** value);
ZVN_API int ZVNsetintattr(ZVNmodel* model, const char* name, int value);
ZVN_API int ZVNsetdblattr(ZVNmodel* model, const char* name, double value);
ZVN_API int ZVNsetstrattr(ZVNmodel* model, const char* name, const char* value);

ZVN_API int ZVNgetcharattrelement(ZVNmodel* model, const char* name, int i, char* value);
ZVN_API int ZVNgetintattrelement(ZVNmodel* model, const char* name, int i, int* value);
ZVN_API int ZVNgetdblattrelement(ZVNmodel* model, const char* name, int i, double* value);
ZVN_API int ZVNgetstrattrelement(ZVNmodel* model, const char* name, int i, char** value);
ZVN_API int ZVNsetcharattrelement(ZVNmodel* model, const char* name, int i, char value);
ZVN_API int ZVNsetintattrelement(ZVNmodel* model, const char* name, int i, int value);
ZVN_API int ZVNsetdblattrelement(ZVNmodel* model, const char* name, int i, double value);
ZVN_API int ZVNsetstrattrelement(ZVNmodel* model, const char* name, int i, const char* value);

/* n values, of the objects ind[0] .. ind[n-1]. */
ZVN_API int ZVNgetcharattrlist(ZVNmodel* model, const char* name, int n, const int* ind, char* values);
ZVN_API int ZVNgetintattrlist(ZVNmodel* model, const char* name, int n, const int* ind, int* values);
ZVN_API int ZVNgetdblattrlist(ZVNmodel* model, const char* name, int n, const int* ind, double* values);
ZVN_API int ZVNgetstrattrlist(ZVNmodel* model, const char* name, int n, const int* ind, char** values);
ZVN_API int ZVNsetcharattrlist(ZVNmodel* model, const char* name, int n, const int* ind, const char* values);
ZVN_API int ZVNsetintattrlist(ZVNmodel* model, const char* name, int n, const int* ind, const int* values);
ZVN_API int ZVNsetdblattrlist(ZVNmodel* model, const char* name, int n, const int* ind, const double* values);
ZVN_API int ZVNsetstrattrlist(ZVNmodel* model, const char* name, int n, const int* ind, char* const* values);

/* ---- Solving ------------------------------------------------------------------------------------------ */

/* Update, then solve. The outcome is in the attribute Status; the code tells only of failures. */
ZVN_API int ZVNoptimize(ZVNmodel* model);
/* Ask a running solve to stop soon. May be called from any thread and from a callback. */
ZVN_API void ZVNterminate(ZVNmodel* model);
/* Let Ctrl-C (SIGINT) stop the next solve of the model as ZVNterminate does. */
ZVN_API void ZVNsetsignal(ZVNmodel* model);

#ifdef __cplusplus
}
#endif
#endif
