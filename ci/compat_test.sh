#!/bin/sh
# Builds and uses the wheel on the oldest and the newest supported Python that pyenv has; without pyenv there is
# nothing to do. Unoptimized builds: what may break is the compile, not the speed.
set -eu
if ! command -v pyenv >/dev/null; then
    echo "no pyenv here"
    exit 0
fi
versions=$(pyenv versions --bare --skip-aliases | grep -E '^3\.([7-9]|1[0-3])\.[0-9]+$' | sort -t. -k2,2n -k3,3n)
for version in $(echo "$versions" | sed -n '1p;$p' | uniq); do
    "$(dirname "$0")/wheel_test.sh" "$(pyenv prefix "$version")/bin/python3" --config-settings=cmake.build-type=Debug
done
