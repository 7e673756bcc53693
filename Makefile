# SPDX-License-Identifier: Apache-2.0
# Each target does all the set-up it needs and may be run again at any time.

.PHONY: help setup build demo test sanitize bench check deb try-deb reference format schemas fuzz clean

help:
	@echo "make demo      run the library against a local service and show what the service received"
	@echo "make test      build and run the whole test suite"
	@echo "make sanitize  the same under the address, undefined-behaviour and thread sanitizers"
	@echo "make bench     measure"
	@echo "make check     format, static analysis, rules of the house"
	@echo "make deb       make the Debian packages, out/deb"
	@echo "make try-deb   the same, then install, use and remove them in a clean Debian (root only)"
	@echo "make fuzz      run each fuzz target for a minute (FUZZ_SECONDS=60)"
	@echo "make format    format all sources in place"
	@echo "make schemas   write what is generated from the tables of fields: JSON Schemas, tables of docs/documents.md"
	@echo "make reference make the reference of the public headers, build/docs/html"
	@echo "make setup     install the Debian packages that are missing"

# Two calls in one checkout build one after the other.
alone := mkdir -p build && flock build/.lock

setup:
	@scripts/setup.sh

build/%/build.ninja: setup
	@$(alone) cmake --preset $*

.PHONY: build-release build-dev build-asan build-tsan build-fuzz
build-release build-dev build-asan build-tsan build-fuzz: build-%: build/%/build.ninja
	@$(alone) cmake --build --preset $*

# Only what the demo runs: the rest of a release build is for others.
demo: build/release/build.ninja
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

clean:
	rm -rf build out
