#!/bin/sh
# Builds one wheel with plain pip from a copy of the sources, deletes the copy, and uses the wheel in a bare
# environment: wheel_test.sh PYTHON
set -eu
python=$1
top=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir "$work/sources"
(cd "$top" && git ls-files -z | tar --create --null --files-from=-) | tar --extract --directory="$work/sources"
"$python" -m venv "$work/build"
"$work/build/bin/python" -m pip wheel --quiet --disable-pip-version-check --no-deps \
    --wheel-dir "$work/dist" "$work/sources"
cp -r "$work/sources/examples/data" "$top/ci/wheel_check.py" "$work"
rm -rf "$work/sources" "$work/build"

"$python" -m venv "$work/use"
"$work/use/bin/python" -m pip install --quiet --disable-pip-version-check --no-index "$work"/dist/*.whl
cd "$work"
"$work/use/bin/python" wheel_check.py "$work/dist" "$work/data"
