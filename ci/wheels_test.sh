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
# Settings by environment: the pip of the oldest interpreter knows no --config-settings.
export SKBUILD_CMAKE_BUILD_TYPE=Debug SKBUILD_CMAKE_DEFINE=ZELVAN_WERROR=ON
for python in ${pythons:-${PYTHON:-python3}}; do
    "$(dirname "$0")/wheel_test.sh" "$python"
done
