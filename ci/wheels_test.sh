#!/bin/sh
# The wheel on the oldest and the newest supported Python that pyenv has, or on PYTHON alone where there is no pyenv.
# Builds are unoptimized, and warnings are errors: what may break is the compile and the packing, not the speed.
set -eu
pythons=
if command -v pyenv >/dev/null; then
    versions=$(pyenv versions --bare --skip-aliases | grep -E '^3\.([7-9]|1[0-3])\.[0-9]+$' | sort -t. -k2,2n -k3,3n)
    for version in $(echo "$versions" | sed -n '1p;$p' | uniq); do
        pythons="$pythons $(pyenv prefix "$version")/bin/python3"
    done
fi
for python in ${pythons:-${PYTHON:-python3}}; do
    "$(dirname "$0")/wheel_test.sh" "$python" --config-settings=cmake.build-type=Debug \
        --config-settings=cmake.define.ZELVAN_WERROR=ON
done
