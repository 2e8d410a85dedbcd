"""Command line: read a model file, solve it, print the answer.

    python -m zelvanpy MODEL [Parameter=value ...] [--write FILE ...]

MODEL is an .mps or .lp file, also with .gz behind. Each --write names a file that is written after the solve, its kind
chosen by the ending: .json for the solution, .mps or .lp for the model, .prm for the parameters.

The exit code is 0 when an optimal solution was found, 1 when the solve ended otherwise, 2 when the command line, a
parameter or a file is at fault.
"""

import argparse
import signal
import sys

import zelvanpy

SHOWN = 50  # variables listed before the rest is only counted
ROUNDING = 1e-9  # values up to this are zero but for the solver's arithmetic


def parse(arguments):
    parser = argparse.ArgumentParser(
        prog="python -m zelvanpy",
        description="Read a model file, solve it and print the answer.",
        epilog="Exit code: 0 optimal, 1 any other end of the solve, 2 fault in command line, parameter or file.",
    )
    parser.add_argument("--version", action="version", version="zelvanpy " + zelvanpy.__version__)
    parser.add_argument("model", help="model file: .mps or .lp, also with .gz behind")
    parser.add_argument("parameters", nargs="*", metavar="Parameter=value", help="parameter setting, e.g. TimeLimit=10")
    parser.add_argument(
        "--write",
        action="append",
        default=[],
        metavar="FILE",
        help="file to write after the solve, e.g. answer.sol (may be given several times)",
    )
    options = parser.parse_intermixed_args(arguments)
    for setting in options.parameters:
        if "=" not in setting:
            parser.error("'%s' is no parameter setting of the form Parameter=value" % setting)
    return options


def set_parameters(env, settings):
    """Set each 'Parameter=value'; the value is converted to the parameter's type."""
    for setting in settings:
        name, text = setting.split("=", 1)
        info = env._getParamInfo(name)
        if info is None:
            raise ValueError("There is no parameter '%s'" % name)
        try:
            value = text if text.upper() == "DEFAULT" else info[1](text)
        except ValueError:
            raise ValueError("Parameter %s takes %s, not '%s'" % (name, info[1].__name__, text)) from None
        env.setParam(name, value)


def status_name(status):
    """Name of a status code: "OPTIMAL" for 2."""
    names = vars(type(zelvanpy.ZVN.Status)).items()
    return next(name for name, value in names if name.isupper() and value == status)


def print_answer(model):
    print("\nStatus: " + status_name(model.Status))
    if model.SolCount == 0:
        return
    print("Objective: %.10g" % model.ObjVal)
    variables = model.getVars()
    answer = zip(model.getAttr("VarName", variables), model.getAttr("X", variables))
    nonzero = [(name, value) for name, value in answer if abs(value) > ROUNDING]
    print("Non-zero variables: %d of %d" % (len(nonzero), len(variables)))
    width = max([len(name) for name, _ in nonzero[:SHOWN]], default=0)
    for name, value in nonzero[:SHOWN]:
        print("  %-*s  %.10g" % (width, name, value))
    if len(nonzero) > SHOWN:
        print("  and %d more; --write answer.sol keeps them all" % (len(nonzero) - SHOWN))


def main(arguments=None):
    options = parse(arguments)
    try:
        with zelvanpy.Env(empty=True) as env:
            set_parameters(env, options.parameters)
            env.start()
            with zelvanpy.read(options.model, env) as model:
                model.optimize()
                print_answer(model)
                for filename in options.write:
                    model.write(filename)
                return 0 if model.Status == zelvanpy.ZVN.OPTIMAL else 1
    except (zelvanpy.ZelvanError, ValueError) as error:
        print("Error: %s" % error, file=sys.stderr)
        return 2


if __name__ == "__main__":
    if hasattr(signal, "SIGPIPE"):
        signal.signal(signal.SIGPIPE, signal.SIG_DFL)  # `| head` ends it like any other command
    sys.exit(main())
