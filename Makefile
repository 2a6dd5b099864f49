# The two commands of the README: `make run` and `make test` (warnings are errors there).
JOBS ?= $(shell nproc)
RELEASE_DIR := build/release
TEST_DIR := build/asan
DEMO_ARGS ?= --demo

FUZZ_DIR := build/fuzz
FUZZERS := props_fuzzer find_prop_fuzzer tsql_bridge_fuzzer message_fuzzer verdict_fuzzer gs1_fuzzer quote_defence_fuzzer
FUZZ_SECONDS ?= 10
FUZZ_LONG_SECONDS ?= 600

.PHONY: all deps build run test bench soak screens fuzz fuzz-build fuzz-long mutants clean

all: build

deps:
	@bash scripts/install-deps.sh

build: deps
	cmake -S . -B $(RELEASE_DIR) -DCMAKE_BUILD_TYPE=Release -DRNW_TESTS=OFF >/dev/null
	cmake --build $(RELEASE_DIR) -j $(JOBS)

run: build
	$(RELEASE_DIR)/bin/rnwdpicking $(DEMO_ARGS)

test: deps
	cmake -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=Debug -DRNW_SANITIZE=ON -DRNW_TESTS=ON -DRNW_WERROR=ON -DRNW_PCH=ON >/dev/null
	cmake --build $(TEST_DIR) -j $(JOBS)
	cd $(TEST_DIR) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)
	$(MAKE) --no-print-directory fuzz

# The speed of the station on generated orders (Release build), as a table and
# JSON, then the soak.
bench: deps
	cmake -S . -B $(RELEASE_DIR) -DCMAKE_BUILD_TYPE=Release -DRNW_TESTS=OFF >/dev/null
	cmake --build $(RELEASE_DIR) -j $(JOBS) --target rnw_bench
	QT_QPA_PLATFORM=offscreen $(RELEASE_DIR)/bin/rnw_bench $(BENCH_ARGS)
	$(MAKE) --no-print-directory soak

# Ten thousand scans in one session (Release): memory and file handles
# before and after. RNW_RELIABILITY_SCANS sets the count.
SOAK_DIR := build/soak
soak: deps
	cmake -S . -B $(SOAK_DIR) -DCMAKE_BUILD_TYPE=Release -DRNW_TESTS=ON >/dev/null
	cmake --build $(SOAK_DIR) -j $(JOBS) --target rnw_soak
	QT_QPA_PLATFORM=offscreen $(SOAK_DIR)/bin/rnw_soak

# Pictures of the station for a look by eye, in $(TEST_DIR)/screenshots/.
screens: deps
	cmake -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=Debug -DRNW_SANITIZE=ON -DRNW_TESTS=ON -DRNW_WERROR=ON -DRNW_PCH=ON >/dev/null
	cmake --build $(TEST_DIR) -j $(JOBS) --target rnw_screens
	cd $(TEST_DIR) && QT_QPA_PLATFORM=offscreen LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp ./bin/rnw_screens

fuzz-build: deps
	cmake -S . -B $(FUZZ_DIR) -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ -DRNW_FUZZ=ON -DRNW_TESTS=OFF >/dev/null
	cmake --build $(FUZZ_DIR) -j $(JOBS)

# A short run of every fuzz target (part of `make test`); fuzz-long for hours' worth.
fuzz: fuzz-build
	@bash scripts/run-fuzzers.sh $(FUZZ_DIR)/bin $(FUZZ_SECONDS) $(FUZZERS)

fuzz-long: fuzz-build
	@bash scripts/run-fuzzers.sh $(FUZZ_DIR)/bin $(FUZZ_LONG_SECONDS) $(FUZZERS)

# Seeded faults, one at a time, against the suites (its own build, not part of
# `make test`): MUTANTS_ARGS="--only ID,ID", "--folder grid", "--check", "--out FILE".
mutants: deps
	python3 scripts/mutants.py $(MUTANTS_ARGS)

clean:
	rm -rf build
