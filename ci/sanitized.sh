#!/bin/sh
# Runs Python on the sanitizer build: sanitized.sh PYTHON SITE ARGUMENT...
# SITE is the folder that holds the package. The runtime must be loaded before the interpreter, and libstdc++ with
# it, or exceptions that cross from one library into another are not followed. Python's allocator is replaced by
# malloc, so that a stale reference is seen at its first use. Libraries loaded by name are looked for in the package by
# LD_LIBRARY_PATH: the sanitizer's dlopen doesn't see the run path of its caller.
set -eu
python=$1
PYTHONPATH=$2 LD_LIBRARY_PATH=$2/zelvanpy
shift 2
compiler=${CXX:-g++}
export PYTHONPATH LD_LIBRARY_PATH PYTHONMALLOC=malloc ZELVAN_SANITIZED=1
export ASAN_OPTIONS="detect_leaks=${ZELVAN_LEAKS:-0}:strict_string_checks=1:detect_stack_use_after_return=1"
export UBSAN_OPTIONS=print_stacktrace=1
LD_PRELOAD="$("$compiler" -print-file-name=libasan.so) $("$compiler" -print-file-name=libstdc++.so)"
export LD_PRELOAD
exec "$python" "$@"
