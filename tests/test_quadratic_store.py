"""Quadratic objectives and constraints in the library's store, through its C interface."""

import ctypes

import pytest
from native import (
    BAD_INDEX,
    BAD_VALUE,
    INFINITY,
    INVALID,
    NOT_AVAILABLE,
    Environment,
    Int,
    LibraryError,
    Model,
    array,
    lib,
)

DUPLICATES = 10018


@pytest.fixture(params=[0, 1])
def env(request):
    env = Environment(OutputFlag=0, UpdateMode=request.param)
    yield env
    env.close()


@pytest.fixture
def model(env):
    with env.new(lb=[0, 0, 0], ub=[9, 9, 9]) as model:
        model.update()
        yield model


def find(model, name):
    index = Int()
    model.call("ZVNgetqconstrbyname", name.encode(), ctypes.byref(index))
    return index.value


def delete(model, call, *index):
    model.call(call, len(index), array(Int, index))


def test_terms_are_added_up_by_pair_and_stay_in_order(model):
    terms = [(2, 1, 1.0), (0, 0, 2.0), (1, 2, 0.5), (2, 2, 1.0), (1, 0, 0.0), (2, 2, -1.0), (0, 0, 1.0)]
    model.add_quadratic_row("q", "<", 4, [(1, 2.0), (0, 0.0)], terms)
    model.set_objective([(0, 1.0), (0, 2.0)], terms[::-1], sense=-1, constant=3.0)
    assert model.get("NumQConstrs") == model.get("NumQNZs") == 0  # not before the update
    assert model.quadratic_terms() == []
    model.update()
    assert model.quadratic_rows() == [("q", "<", 4.0, [(1, 2.0)], [(1, 2, 1.5), (0, 0, 3.0)])]
    assert model.quadratic_terms() == [(0, 0, 3.0), (1, 2, 1.5)]
    assert [model.get(name) for name in ("NumQConstrs", "NumQNZs", "NumQCNZs", "ModelSense", "ObjCon")] == [
        1,
        2,
        2,
        -1,
        3.0,
    ]
    assert model.get("Obj", range(3)) == [3.0, 0.0, 0.0]


def test_long_lists_are_merged_as_a_dictionary_merges_them(env):
    size = 300
    terms = [(k * k % size, 7 * k % 11, float(k % 5 - 2)) for k in range(3000)]
    merged = {}
    for i, j, value in terms:
        pair = (min(i, j), max(i, j))
        merged[pair] = merged.get(pair, 0.0) + value
    with env.new(lb=[0] * size, ub=[1] * size) as model:
        model.update()
        model.set_objective([], terms)
        model.update()
        assert model.quadratic_terms() == [(*pair, value) for pair, value in merged.items() if value]
    # The same merge for callers, who see the pairs as they passed them first.
    count = Int(len(terms))
    arrays = [array(kind, values) for kind, values in zip((Int, Int, ctypes.c_double), zip(*terms))]
    assert lib.ZVNclean3(ctypes.byref(count), *arrays) == 0
    cleaned = list(zip(*arrays))[: count.value]
    assert [(min(i, j), max(i, j), value) for i, j, value in cleaned] == [(*p, v) for p, v in merged.items() if v]


def test_the_objective_is_replaced_whole_and_the_attribute_only_in_part(model):
    quadratic = [(0, 1, 2.0)]
    model.set_objective([(0, 1.0)], quadratic)
    model.set("Obj", 5.0, 1)
    model.update()
    assert (model.quadratic_terms(), model.get("Obj", range(3))) == (quadratic, [1.0, 5.0, 0.0])
    model.set_objective_n(1, 2, 1.0, 0.0, 0.0, "second", 0.0, [(2, 1.0)])
    model.update()
    assert model.quadratic_terms() == quadratic
    model.set_objective_n(0, 2, 1.0, 0.0, 0.0, "main", 0.0, [(2, 1.0)])
    model.update()
    assert model.quadratic_terms() == []
    model.set_objective([], quadratic)
    model.set_objective([(0, 1.0)])
    model.update()
    assert model.quadratic_terms() == []


def test_what_is_deleted_takes_its_terms_along(model):
    for k in range(3):
        model.add_quadratic_row(
            "q%d" % k, "<>="[k], k, [(0, 1.0), (1, 2.0)], [(0, 0, 1.0), (1, 2, 2.0), (2, 2, k - 1.0)]
        )
    model.set_objective([(1, 1.0)], [(0, 1, 1.0), (2, 0, 2.0), (2, 2, 3.0)])
    model.update()
    model.set("QCName", "last", 2)
    model.set("QCTag", "a tag", 2)
    delete(model, "ZVNdelqconstrs", 0, 0)
    delete(model, "ZVNdelvars", 1)
    model.add_quadratic_row("late", "<", 7, [(1, 1.0), (2, 1.0)], [(0, 1, 1.0), (2, 0, 4.0)])
    model.update()
    assert model.quadratic_terms() == [(0, 1, 2.0), (1, 1, 3.0)]
    assert model.quadratic_rows() == [
        ("q1", ">", 1.0, [(0, 1.0)], [(0, 0, 1.0)]),
        ("last", "=", 2.0, [(0, 1.0)], [(0, 0, 1.0), (1, 1, 1.0)]),
        ("late", "<", 7.0, [(1, 1.0)], [(0, 1, 4.0)]),
    ]
    assert model.get("QCTag", range(3)) == ["", "a tag", ""]
    assert [find(model, name) for name in ("q0", "q1", "q2", "last", "late", "QC1")] == [-1, 0, -1, 1, 2, -1]


def test_attributes_are_written_lazily_and_found_by_name(model):
    for name in ("a", "b", ""):
        model.add_quadratic_row(name, "<", 1, [], [(0, 0, 1.0)])
    model.set("QCRHS", 2.5, 0)
    if model.env.value("UpdateMode") == 1:
        model.set("QCName", "queued", 1)
    model.update()
    assert model.get("QCRHS", range(3)) == [2.5, 1.0, 1.0]
    assert model.get("QCName", 2) == "QC2" and find(model, "QC2") == 2
    model.set("QCSense", [">", "="], [0, 2])
    model.set("QCName", ["b", "a"], [0, 1])
    assert model.get("QCSense", [0, 2]) == ["<", "<"] and find(model, "a") == 0
    model.update()
    assert model.get("QCSense", range(3)) == [">", "<", "="]
    assert [find(model, name) for name in ("a", "b", "QC2", "QC0")] == [1, 0, 2, -1]
    model.set("QCRHS", INFINITY, 2)
    error = model.refused("update")
    assert error.code == BAD_VALUE and "Quadratic constraint 'QC2'" in error.text
    model.set("QCSense", "<", 2)
    model.set("IISQConstrForce", 1, 1)
    model.update()
    assert model.get("QCRHS", 2) == INFINITY and model.get("IISQConstrForce", range(3)) == [-1, 1, -1]
    for name in ("QCPi", "QCSlack", "IISQConstr"):
        assert model.refused("get", name, 0).code == NOT_AVAILABLE


TERM = [(0, 1, 1.0)]


@pytest.mark.parametrize(
    "terms, code, words",
    [
        ([(0, 3, 1.0)], BAD_INDEX, "Quadratic term 0 of %s has variable index 3, allowed are 0 to 2"),
        (TERM + [(-1, 0, 1.0)], BAD_INDEX, "Quadratic term 1 of %s has variable index -1"),
        ([(0, 1, float("nan"))], BAD_VALUE, "of %s (variables 0 and 1) has the coefficient nan"),
        ([(2, 1, 1e20)], BAD_VALUE, "of %s (variables 2 and 1) has the coefficient 1e+20, which is infinite"),
        ([(0, 1, 9e19), (1, 0, 9e19)], BAD_VALUE, "of variables 0 and 1 of %s add up to 1.8e+20"),
    ],
)
def test_refused_terms_queue_nothing(model, terms, code, words):
    for owner, call in [
        ("the objective", lambda: model.set_objective([(0, 1.0)], terms)),
        ("quadratic constraint 'q'", lambda: model.add_quadratic_row("q", "<", 1, [], terms)),
        ("new quadratic constraint 0", lambda: model.add_quadratic_row("", "<", 1, [], terms)),
    ]:
        with pytest.raises(LibraryError) as caught:
            call()
        assert caught.value.code == code and words % owner in caught.value.text
    model.update()
    assert model.get("NumQConstrs") == model.get("NumQNZs") == 0 and model.get("Obj", 0) == 0.0


@pytest.mark.parametrize(
    "arguments, code, words",
    [
        (("q", "<", 1, [(1, 1.0), (1, 2.0)]), DUPLICATES, "quadratic constraint 'q' repeats index 1"),
        (("q", "<", 1, [(3, 1.0)]), BAD_INDEX, "quadratic constraint 'q' has index 3"),
        (("q", "R", 1, []), INVALID, "Sense 'R' of quadratic constraint 'q'"),
        (("q", "<", -INFINITY, []), BAD_VALUE, "Right-hand side -infinity of quadratic constraint 'q'"),
        (("q", "=", float("nan"), []), BAD_VALUE, "Right-hand side nan"),
        (("n" * 256, "<", 1, []), INVALID, "Name of a quadratic constraint"),
    ],
)
def test_refused_constraints_queue_nothing(model, arguments, code, words):
    error = model.refused("add_quadratic_row", *arguments, TERM)
    assert error.code == code and words in error.text
    model.update()
    assert model.get("NumQConstrs") == 0


def test_indices_out_of_range_and_missing_arrays_are_refused(model):
    model.add_quadratic_row("q", "<", 1, [], TERM)
    model.update()
    count = ctypes.byref(Int())
    for call in [
        ("ZVNgetqconstr", 1, count, None, None, count, None, None, None),
        ("ZVNgetqconstr", -1, count, None, None, count, None, None, None),
        ("ZVNdelqconstrs", 1, array(Int, [1])),
    ]:
        assert model.refused("call", *call).code == BAD_INDEX
    sides = (ctypes.c_char(b"<"), ctypes.c_double(1), None)
    for call in [
        ("ZVNaddqconstr", 0, None, None, 1, None, array(Int, [0]), array(ctypes.c_double, [1]), *sides),
        ("ZVNaddqconstr", 1, None, None, 0, None, None, None, *sides),
        ("ZVNaddqconstr", 0, None, None, -1, None, None, None, *sides),
        ("ZVNsetobjective", 0, ctypes.c_double(0), 0, None, None, 1, None, None, None),
        ("ZVNgetqconstr", 0, None, None, None, count, None, None, None),
        ("ZVNgetq", None, None, None, None),
    ]:
        model.refused("call", *call)
    assert model.get("NumQConstrs") == 1


def test_a_copy_and_the_kind_of_the_model(model):
    kinds = ("IsMIP", "IsQP", "IsQCP")
    assert [model.get(name) for name in kinds] == [0, 0, 0]
    model.set_objective([], [(0, 0, 2.0), (1, 2, -0.5)])
    model.update()
    assert [model.get(name) for name in kinds] == [0, 1, 0]
    model.add_quadratic_row("q", ">", -3, [(0, -4.0), (1, 0.25)], [(0, 1, 6.0), (2, 2, 1e-3)])
    model.add_quadratic_row("p", "<", INFINITY, [], [(0, 0, 1.0)])
    model.update()
    assert [model.get(name) for name in kinds] == [0, 0, 1]
    ranges = {"QCRHS": (3, 3), "QCCoeff": (6, 1e-3), "QCLCoeff": (4, 0.25), "QObjCoeff": (2, 0.5), "ObjCoeff": (0, 0)}
    for name, (largest, smallest) in ranges.items():
        assert (model.get("Max" + name), model.get("Min" + name)) == (largest, smallest), name
    lib.ZVNcopymodel.restype = ctypes.c_void_p
    with Model(ctypes.c_void_p(lib.ZVNcopymodel(model.handle))) as copy:
        assert copy.content() == model.content() and copy.get("Fingerprint") == model.get("Fingerprint")
        delete(copy, "ZVNdelqconstrs", 0)
        copy.update()
        assert (find(copy, "p"), find(model, "p")) == (0, 1)


def test_the_fingerprint_sees_values_and_not_their_order(env):
    def fingerprint(objective, terms, rhs=1.0):
        with env.new(lb=[0] * 3, ub=[1] * 3) as model:
            model.update()
            model.set_objective([], objective)
            model.add_quadratic_row("any", "<", rhs, [(0, 1.0)], terms)
            model.update()
            return model.get("Fingerprint")

    one, two = [(0, 1, 1.0), (2, 2, 2.0)], [(0, 0, 1.0), (1, 2, 3.0)]
    same = fingerprint(one, two)
    assert fingerprint(one[::-1], [(2, 1, 3.0), (0, 0, 1.0)]) == same
    others = [fingerprint(*case) for case in [(two, one), (one, one), (one, two, 2.0), ([], two), (one, [])]]
    assert len({same, *others}) == 6


def test_measures_of_a_solution(env):
    """(x - 3)^2 + (y - 1)^2 + x y over x + y <= 2, which ends at (3, -1) with the multiplier -1."""
    with env.new(lb=[-9, -9], ub=[9, 9], rows=[({0: 1.0, 1: 1.0}, "<", 2.0)]) as model:
        model.set_objective([(0, -6.0), (1, -2.0)], [(0, 0, 1.0), (0, 1, 1.0), (1, 1, 1.0)], 1, 10.0)
        model.optimize()
        assert model.get("X", range(2)) == pytest.approx([3, -1], abs=1e-6)
        for name in ("ObjVal", "ObjNVal"):
            assert model.get(name) == pytest.approx(1)
        assert model.get("Pi", 0) == pytest.approx(-1, abs=1e-5)
        assert max(model.get(name) for name in ("DualResidual", "ConstrResidual", "MaxVio")) <= 1e-6
