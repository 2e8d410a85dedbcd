"""Algebraic modelling of mathematical optimization problems."""

from . import _zelvanpy

globals().update(
    (name, value)
    for name, value in vars(_zelvanpy).items()
    if name not in ("__name__", "__doc__", "__file__", "__loader__", "__package__", "__spec__")
)
