# The two commands of the README: `make run` and `make test`. Both install what is missing first.
SHELL := /bin/bash
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 300
FIXTURES := $(abspath ../shared/fixtures)
QB := build/release/apps/quillbrook/quillbrook
DEMO := build/release/examples/demo/demo.stk
DEMO_PNGS := build/release/demo-cards

.PHONY: all deps deps-web run test test-native test-asan test-wasm build-release coverage fuzz bench format clean

all: build-release

deps:
	@scripts/install-deps.sh

deps-web:
	@scripts/install-deps.sh --web

build-release: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(JOBS)

# With a display the demo plays in a window; without one its cards are drawn headless, as PNG files.
run: build-release
	@if [[ -n "$${DISPLAY:-}$${WAYLAND_DISPLAY:-}" ]]; then \
	  $(QB) play $(DEMO); \
	else \
	  $(QB) render $(DEMO) --all --contact-sheet -o $(DEMO_PNGS) && \
	  echo "The demo's cards are in $(DEMO_PNGS)/ (contact-sheet.png shows them all)."; \
	fi

test: deps-web test-native test-asan test-wasm

test-native: build-release
	ctest --preset release -j $(JOBS)

test-asan: deps
	@cmake --preset asan >/dev/null
	@cmake --build --preset asan -j $(JOBS)
	ctest --preset asan -j $(JOBS)

# The unit tests compiled with emscripten and run under node; the preset carries node's settings.
test-wasm: deps-web
	@scripts/build-web-deps.sh
	@NODE_PATH=/usr/share/nodejs cmake --preset wasm >/dev/null
	@cmake --build --preset wasm -j $(JOBS)
	NODE_PATH=/usr/share/nodejs ctest --preset wasm -j $(JOBS)

# The unit tests in a --coverage build (build/coverage), then the line coverage of src/ by gcovr:
# the summary on the terminal, the table by file in build/coverage/coverage.txt. Counters of an
# earlier run are cleared first, so the figure is this run's alone.
coverage: deps
	@cmake --preset coverage >/dev/null
	@cmake --build --preset coverage -j $(JOBS)
	@find build/coverage -name '*.gcda' -delete
	ctest --preset coverage -j $(JOBS)
	gcovr -r . --object-directory build/coverage --exclude-directories 'build/coverage/CMakeFiles' \
	  --filter 'src/' --exclude 'build/' --exclude 'tests/' --print-summary -o build/coverage/coverage.txt

# libFuzzer targets built with clang-14 + ASan + UBSan; each runs FUZZ_SECONDS (make fuzz FUZZ_SECONDS=60).
fuzz: deps
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz -j $(JOBS)
	scripts/run-fuzz.sh build/fuzz $(FUZZ_SECONDS)

# The benchmark is left out of the release build's default targets, so `make test` never builds it.
bench: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(JOBS) --target qb_bench qb_codec_bench qb_card_bench qb_transition_bench qb_player_cpu_bench qb_sound_bench quillbrook
	build/release/bench/qb_bench
	build/release/bench/qb_codec_bench
	build/release/bench/qb_card_bench
	build/release/bench/qb_transition_bench
	build/release/bench/qb_player_cpu_bench
	build/release/bench/qb_sound_bench
	bench/logo-bench.sh build/release/apps/quillbrook/quillbrook

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf build
