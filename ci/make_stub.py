"""Write the lists of names in python/zelvanpy/__init__.pyi from the tables of the module: `python ci/make_stub.py`
(needs the package installed).

With --check nothing is written; the exit status tells whether the file is current. A list stands between a line
`# made by make_stub.py: <name>` and a line `# end`.
"""

import pathlib
import re
import sys

import zelvanpy
from zelvanpy import ZVN

TARGET = pathlib.Path(__file__).resolve().parent.parent / "python" / "zelvanpy" / "__init__.pyi"
HANDLES = ["Var", "Constr", "SOS", "QConstr", "GenConstr"]
TYPES = {0: "str", 1: "int", 2: "float", 3: "str"}
CLASSES = ["AttrConstClass", "ParamConstClass", "StatusConstClass", "ErrorConstClass", "CallbackClass", "ZVN"]


def attributes(model, kind):
    """Name, Python type and whether it can be set, of each attribute of a kind of object."""
    for name in getattr(zelvanpy, "__attrlist")(model._cmodel, kind):
        code, _, settable = getattr(zelvanpy, "__getattrinfo")(model, name)
        yield name, TYPES[code], bool(settable)


def fields(table):
    return ["    %s: %s" % (name, of if settable else "Final[%s]" % of) for name, of, settable in table]


def array_fields(table):
    """The attributes of an array of handles: descriptors, as what is set may be a scalar or an array."""
    arrays = {"float": "Float", "int": "Int", "str": "Str"}
    return ["    %s: _%s%sArray" % (name, "" if settable else "ReadOnly", arrays[of]) for name, of, settable in table]


def literal(alias, names):
    if len(names) < 2:
        return ['%s: TypeAlias = Literal["%s"]' % (alias, name) for name in names]
    return ["%s: TypeAlias = Literal[" % alias] + ['    "%s",' % name for name in names] + ["]"]


def aliases(prefix, table):
    """The names of the attributes by type, and those that can be set."""
    lines = []
    for of in ("float", "int", "str"):
        named = [(name, settable) for name, each, settable in table if each == of]
        lines += literal("_%s%s" % (prefix, of.title()), [name for name, _ in named])
        lines += literal("_%s%sSet" % (prefix, of.title()), [name for name, settable in named if settable])
    return lines


def getters(prefix, table, set_too):
    """The overloads of getAttr or setAttr of a handle."""
    kinds = [of for of in ("float", "int", "str") if any(each == of and (s or not set_too) for _, each, s in table)]
    lines = []
    for of in kinds:
        alias = "_%s%s%s" % (prefix, of.title(), "Set" if set_too else "")
        if len(kinds) > 1:
            lines.append("    @overload")
        value = {"float": "SupportsFloat"}.get(of, of)
        lines.append(
            "    def setAttr(self, attrname: %s, newval: %s) -> None: ..." % (alias, value)
            if set_too
            else "    def getAttr(self, attrname: %s) -> %s: ..." % (alias, of)
        )
    return lines


def constants(name):
    cls = ZVN if name == "ZVN" else getattr(zelvanpy, name)
    for key, value in vars(cls).items():
        if key.startswith("_") or not isinstance(value, (int, float, str)):
            continue
        of = 'Literal["%s"]' % value if name == "AttrConstClass" else type(value).__name__
        yield "    %s: ClassVar[%s]" % (key, of)


def parameters(env):
    for name in env._paramlist("*"):
        yield "    %s: %s" % (name, env._getParamInfo(name)[1].__name__)


def lists():
    """The lines of each list."""
    with zelvanpy.Env(params={"OutputFlag": 0}) as env, zelvanpy.Model(env=env) as model:
        tables = {kind: list(attributes(model, kind)) for kind in range(1 + len(HANDLES))}
        made = {name: list(constants(name)) for name in CLASSES}
        made["ParamClass"] = list(parameters(env))
    made["Model"] = fields(tables[0])
    made["names of attributes"] = aliases("Model", tables[0])
    for kind, handle in enumerate(HANDLES, 1):
        made[handle] = fields(tables[kind])
        made[handle + " by name"] = getters(handle, tables[kind], False) + getters(handle, tables[kind], True)
        made["names of attributes"] += aliases(handle, tables[kind])
    for name, kind in (("MVar", 1), ("MConstr", 2), ("MQConstr", 4)):
        made[name] = array_fields(tables[kind])
    return made


def current(text, made):
    def filled(match):
        return match.group(1) + "\n".join(made[match.group(2)]) + "\n" + match.group(3)

    return re.sub(r"(?ms)^( *# made by make_stub\.py: ([\w ]+)\n).*?^( *# end$)", filled, text)


def main():
    text = TARGET.read_text()
    new = current(text, lists())
    if "--check" not in sys.argv[1:]:
        TARGET.write_text(new)
    elif new != text:
        sys.exit("python/zelvanpy/__init__.pyi is not current: run ci/make_stub.py")


if __name__ == "__main__":
    main()
