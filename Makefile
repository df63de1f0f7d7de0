# The commands people type. Each one installs what it needs, configures its
# CMake preset and builds; the presets live in CMakePresets.json.
.PHONY: all deps demo test test-large sanitize tsan bench fuzz format clean

SOURCES = $(shell git ls-files '*.h' '*.cpp')
DEMO_FILES = README.md Makefile CMakeLists.txt $(wildcard docs/formats/*.md)
FUZZ_SECONDS ?= 30

all: test

deps:
	@bash scripts/install-deps.sh

# The main job: build everything and run the tool on the repository's own files.
demo: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release
	@echo "--- morvelan crc32 on this repository's files"
	@build/release/cli/morvelan crc32 $(DEMO_FILES)
	@echo "--- and on standard input"
	@printf '123456789' | build/release/cli/morvelan crc32
	@tool=build/release/cli/morvelan; work=$$(mktemp -d); trap 'rm -rf "$$work"' EXIT; \
	for method in stored deflated quicklz; do \
		archive=$$work/sample-$$method.arc; \
		echo "--- morvelan archive create --method $$method sample-$$method.arc demo/sample"; \
		$$tool archive create --method $$method --header made-by=demo $$archive demo/sample || exit 1; \
		echo "--- morvelan archive list sample-$$method.arc"; \
		$$tool archive list $$archive || exit 1; \
		echo "--- morvelan archive verify sample-$$method.arc"; \
		$$tool archive verify $$archive || exit 1; \
		echo "--- morvelan archive extract sample-$$method.arc -C out-$$method, then diff -r with demo/sample"; \
		$$tool archive extract $$archive -C $$work/out-$$method || exit 1; \
		diff -r demo/sample $$work/out-$$method/sample || exit 1; echo "same tree"; \
	done; \
	echo "--- morvelan archive create/verify on 256 MiB (a progress bar on standard error, when it is a terminal)"; \
	head -c 268435456 /dev/urandom >$$work/noise.bin; \
	$$tool archive create --method deflated $$work/noise.arc $$work/noise.bin || exit 1; \
	$$tool archive verify $$work/noise.arc || exit 1; \
	echo "--- morvelan base64 encode, then decode"; \
	printf 'Morvelan\n' | $$tool base64 encode; \
	printf 'Morvelan\n' | $$tool base64 encode | $$tool base64 decode

test: deps
	@cmake --preset debug >/dev/null
	@cmake --build --preset debug
	@ctest --preset debug

# The tests labelled `large` (archives past 4 GiB), left out of the others:
# optimized, as they stream gigabytes.
test-large: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release --target LargeArchiveTests LargeZipTests
	@ctest --preset large

sanitize: deps
	@cmake --preset asan-ubsan >/dev/null
	@cmake --build --preset asan-ubsan
	@ctest --preset asan-ubsan

tsan: deps
	@cmake --preset tsan >/dev/null
	@cmake --build --preset tsan
	@ctest --preset tsan

bench: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release --target MorvelanBenchmarks
	@python3 scripts/bench_summary.py build/release/bench/MorvelanBenchmarks bench/comparisons.json build/bench

fuzz:
	@bash scripts/install-deps.sh fuzz
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz
	@bash scripts/run-fuzzers.sh build/fuzz/fuzz $(FUZZ_SECONDS)

format:
	@bash scripts/install-deps.sh format
	@clang-format -i $(SOURCES)

clean:
	@rm -rf build
