# Everything runs in a virtual environment that these rules make: `make demo`, `make test`, ...
# Another interpreter, with an environment of its own: `make PYTHON=python3.12 test`.

PYTHON ?= python3
VENV ?= .venv$(if $(filter-out python3,$(PYTHON)),-$(notdir $(PYTHON)))
BIN := $(VENV)/bin
TESTS ?= tests
PYTEST_ARGS ?= -q
PIP_INSTALL := $(BIN)/python -m pip install --quiet --disable-pip-version-check
PIP_PACKAGE := $(PIP_INSTALL) --no-build-isolation --no-deps

SOURCES := $(shell find src python licenses -type f -not -name '*.pyc') CMakeLists.txt pyproject.toml README.md \
	ci/highs_extras.py
C_FILES := $(shell find src tests -name '*.cpp' -o -name '*.h' -o -name '*.c')

.PHONY: demo test bench asan lint stubtest clean

demo: $(VENV)/installed
	$(BIN)/python -m zelvanpy examples/data/transport.mps
	$(BIN)/python -m zelvanpy examples/data/shifts.lp

test: $(VENV)/installed $(VENV)/test-tools
	$(BIN)/python -m pytest $(PYTEST_ARGS) $(TESTS)

# Ratios against a baseline timed in the same run. ZELVAN_BENCH_SHORT=1 only checks that they run.
bench: $(VENV)/installed $(VENV)/test-tools
	@for script in bench/bench_*.py; do echo "== $$script"; $(BIN)/python $$script || exit 1; done

# The tests under the address and undefined-behaviour sanitizers.
asan: build/asan/installed $(VENV)/test-tools
	ci/sanitized.sh $(BIN)/python build/asan/site -m pytest $(PYTEST_ARGS) $(TESTS)

lint: build/lint/compile_commands.json $(VENV)/dev-tools
	$(BIN)/clang-format --dry-run -Werror $(C_FILES)
	$(BIN)/run-clang-tidy.py -quiet -clang-tidy-binary $(BIN)/clang-tidy -p build/lint 'src/.*\.cpp$$'
	$(BIN)/python ci/layers.py
	$(BIN)/ruff check .
	$(BIN)/ruff format --check .

# The typed stub against the module as built, and what it finds in code that uses the module.
stubtest: $(VENV)/installed $(VENV)/dev-tools
	$(BIN)/python ci/make_stub.py --check
	$(BIN)/python ci/typing_check.py
	$(BIN)/python -m mypy.stubtest zelvanpy --ignore-disjoint-bases \
		--allowlist ci/stubtest_allowlist.txt --ignore-unused-allowlist

clean:
	rm -rf build dist .venv .venv-*

$(VENV)/pip:
	$(PYTHON) -m venv $(VENV)
	touch $@

$(VENV)/build-tools: requirements-build.txt | $(VENV)/pip
	$(PIP_INSTALL) -r $<
	touch $@

$(VENV)/test-tools: requirements-test.txt | $(VENV)/pip
	$(PIP_INSTALL) -r $<
	touch $@

$(VENV)/dev-tools: requirements-dev.txt | $(VENV)/pip
	$(PIP_INSTALL) -r $<
	touch $@

$(VENV)/installed: $(SOURCES) $(VENV)/build-tools
	$(PIP_PACKAGE) .
	touch $@

build/asan/installed: $(SOURCES) $(VENV)/build-tools
	$(PIP_PACKAGE) --upgrade --target build/asan/site --config-settings=build-dir=build/asan/tree \
		--config-settings=cmake.define.ZELVAN_SANITIZE=ON --config-settings=install.strip=false .
	touch $@

# clang-tidy can't read precompiled headers of gcc.
build/lint/compile_commands.json: CMakeLists.txt $(VENV)/build-tools
	$(BIN)/cmake -S . -B build/lint -G Ninja -DCMAKE_MAKE_PROGRAM=$(abspath $(BIN))/ninja \
		-DPython_EXECUTABLE=$(abspath $(BIN))/python -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null
