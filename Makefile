# SPDX-License-Identifier: Apache-2.0
# Each target does all the set-up that it needs and can be run again at any time.

.PHONY: help setup build demo test sanitize bench check deb try-deb reference format schemas fuzz build-cost clean

help:
	@echo "make demo       run the example hosts against a local service and print what the service received"
	@echo "make test       build and run the whole test suite"
	@echo "make sanitize   run it under the address, undefined-behaviour and thread sanitizers"
	@echo "make bench      run the benchmarks"
	@echo "make check      check format, static analysis and the project's rules"
	@echo "make deb        build the Debian packages in out/deb"
	@echo "make try-deb    build them, then install, use and remove them in a clean Debian (as root)"
	@echo "make fuzz       run each fuzz target for a minute (FUZZ_SECONDS=60)"
	@echo "make format     format all sources in place"
	@echo "make schemas    generate the JSON Schemas and the tables of docs/documents.md"
	@echo "make reference  generate the reference of the public headers in build/docs/html"
	@echo "make build-cost print the cost of the builds so far"
	@echo "make setup      install missing Debian packages"

# Two calls in one checkout build one after the other.
alone := mkdir -p build && flock build/.lock

setup:
	@scripts/setup.sh

build/%/build.ninja: setup
	@$(alone) cmake --preset $*

.PHONY: build-release build-dev build-asan build-tsan build-fuzz
build-release build-dev build-asan build-tsan build-fuzz: build-%: build/%/build.ninja
	@$(alone) cmake --build --preset $*

# Installs and builds only what the demo runs.
demo:
	@scripts/setup.sh library screens display tools
	@$(alone) cmake --preset release
	@$(alone) cmake --build --preset release --target vorna-devserver vorna-console vorna-app
	@scripts/demo.sh

test: build-dev
	@$(alone) cmake --build --preset dev --target all_verify_interface_header_sets
	@ctest --preset dev

sanitize: build-asan build-tsan
	@ctest --preset asan
	@ctest --preset tsan

bench: build-release
	@scripts/bench.sh

check: build-dev
	@scripts/check.sh

deb: setup
	@$(alone) scripts/deb.sh

try-deb: deb
	@$(alone) tests/packages/run.sh

reference: setup
	@scripts/reference.sh

format: setup
	@scripts/sources.sh | xargs clang-format -i

schemas: build-dev
	@scripts/schemas.sh write

FUZZ_SECONDS ?= 60
fuzz: build-fuzz
	@scripts/fuzz.sh $(FUZZ_SECONDS)

build-cost:
	@scripts/build-cost.py

clean:
	rm -rf build out
