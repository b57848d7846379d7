# Two commands for a newcomer: `make demo` and `make test`. Both install what is missing first (see scripts/setup).
PRESET ?= release
BUILD := build/$(PRESET)

.PHONY: demo test browser-tests asan tsan soak bench fuzz cross coverage package docs build setup format tidy analyse rooms clean

## Make a sample account, export it, import it elsewhere (twice), verify, and say what moved.
demo: setup
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET) --target chat-transfer
	scripts/demo $(BUILD)/app/chat-transfer

## Build and run all tests.
test: build
	ctest --preset $(PRESET)

## The pages of `view` in a browser: Debian's Chromium, driven by Selenium.
browser-tests:
	scripts/setup chromium chromium-driver python3-selenium
	$(MAKE) --no-print-directory build
	ctest --preset $(PRESET) -R '^ViewInABrowser' --no-tests=error

## The same tests under AddressSanitizer, LeakSanitizer and UBSan.
asan:
	$(MAKE) --no-print-directory test PRESET=asan

## The tests that use threads under ThreadSanitizer.
tsan:
	$(MAKE) --no-print-directory test PRESET=tsan

## The long form of the fault sweeps and of the killed runs: every failure of every call, and KILLS moments (1000). Hours.
KILLS ?= 1000
soak: build
	CHAT_TRANSFER_SOAK=1 $(BUILD)/tests/faults/fault_tests
	CHAT_TRANSFER_SOAK=1 $(BUILD)/tests/hostile/hostile_package_tests
	CHAT_TRANSFER_SOAK=1 $(BUILD)/tests/hostile/hostile_tree_tests --gtest_filter='DamagedTree*'
	CHAT_TRANSFER_KILLS=$(KILLS) $(BUILD)/tests/app/app_tests --gtest_filter='Killed*'

## Measure. QUICK=1: small sizes, under two minutes. ROUNDS, SIZES, WORK: rounds, numbers of messages (1000,10000) and
## folder to work in. ONLY: stages (sizes,tree); KEEP=1: the others from the run before. DOCS=1: write the tables of
## docs/performance.md and its plots. Python is the system's: that is where the plotting library is installed.
BENCH_RESULTS := build/bench/results/bench-results.json
bench:
	scripts/setup python3-matplotlib
	$(MAKE) --no-print-directory build PRESET=bench
	build/bench/bench/bench-pieces $(if $(QUICK),--benchmark_min_time=0.02)
	/usr/bin/python3 bench/compare.py build/bench/bench $(BENCH_RESULTS) $(if $(QUICK),--quick) \
	    $(if $(ROUNDS),--rounds $(ROUNDS)) $(if $(SIZES),--sizes $(SIZES)) $(if $(WORK),--work $(WORK)) \
	    $(if $(ONLY),--only $(ONLY)) $(if $(KEEP),--keep)
	/usr/bin/python3 bench/report.py $(BENCH_RESULTS) $(if $(DOCS),--docs docs)

## Fuzz every reader of foreign bytes. SECONDS: time for each target; TARGETS: some of them.
fuzz:
	scripts/setup clang libclang-rt-14-dev
	cmake --preset fuzz
	cmake --build --preset fuzz
	scripts/fuzz $(or $(SECONDS),60) $(TARGETS)

## The tests on other processors, in an emulator, and packages exchanged with them. MACHINES: aarch64, armhf.
cross:
	scripts/cross $(MACHINES)

## How much of transfer/ and host/ the tests reach.
coverage:
	scripts/setup gcovr
	$(MAKE) --no-print-directory test PRESET=coverage
	scripts/coverage

## A Debian package with the program, its pages and the libraries, in build/package.
package: build
	cpack --config $(BUILD)/CPackConfig.cmake -G DEB -B build/package

## The documentation as a site, in build/site.
docs:
	scripts/setup mkdocs mkdocs-material
	mkdocs build --strict

build: setup
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET)

setup:
	@scripts/setup

## Reformat all of our sources.
format:
	scripts/format --fix

## Warnings of clang-tidy and formatting differences are errors. SINCE=REVISION: of what changed since then.
tidy:
	scripts/setup clang-format clang-tidy
	scripts/format
	scripts/tidy $(if $(SINCE),--first $(SINCE))

## Analysers that look for defects: cppcheck over all of our sources, GCC's and Clang's over those in C.
analyse:
	scripts/setup cppcheck clang
	scripts/analyse

## The rooms by floors; an include against their order or a circle fails.
rooms:
	scripts/rooms

clean:
	rm -rf build demo
