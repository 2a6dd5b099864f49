# The two commands of the README: `make run` and `make test`.
JOBS ?= $(shell nproc)
RELEASE_DIR := build/release
TEST_DIR := build/asan
DEMO_ARGS ?= --demo

.PHONY: all deps build run test bench fuzz fuzz-long clean

all: build

deps:
	@bash scripts/install-deps.sh

build: deps
	cmake -S . -B $(RELEASE_DIR) -DCMAKE_BUILD_TYPE=Release -DRNW_TESTS=OFF >/dev/null
	cmake --build $(RELEASE_DIR) -j $(JOBS)

run: build
	$(RELEASE_DIR)/bin/rnwdpicking $(DEMO_ARGS)

test: deps
	cmake -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=Debug -DRNW_SANITIZE=ON -DRNW_TESTS=ON >/dev/null
	cmake --build $(TEST_DIR) -j $(JOBS)
	cd $(TEST_DIR) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j 1

clean:
	rm -rf build
