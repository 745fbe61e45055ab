# The two commands of the README: `make run` and `make test`. Both install what is missing first.
SHELL := /bin/bash
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 300
FIXTURES := $(abspath ../shared/fixtures)
QB := build/release/apps/quillbrook/quillbrook
DEMO := build/release/examples/demo/demo.stk
DEMO_PNGS := build/release/demo-cards

WEB_PORT ?= 8000
WEB_SITE := build/web-site

.PHONY: all deps deps-web run test test-native test-asan test-wasm test-web web build-web bench-web build-release coverage fuzz bench format clean

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

test: deps-web test-native test-asan test-wasm test-web

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

# The web player (wasm build, targets qb_web_player and qb_web_player_asyncify) put together with
# the fonts, the pages and the demo stack (from the release build) as a site in $(WEB_SITE).
build-web: deps-web build-release
	@scripts/build-web-deps.sh
	@NODE_PATH=/usr/share/nodejs cmake --preset wasm >/dev/null
	@cmake --build --preset wasm -j $(JOBS) --target qb_web_player qb_web_player_asyncify
	@rm -rf $(WEB_SITE)
	@scripts/web-site.sh build/wasm $(DEMO) $(WEB_SITE)

# Serves the web player and the demo on 127.0.0.1 until interrupted.
web: build-web
	@echo "The web player: http://127.0.0.1:$(WEB_PORT)/  (drop a .stk on the page, or play the demo)"
	python3 -m http.server $(WEB_PORT) --bind 127.0.0.1 --directory $(WEB_SITE)

# The web player in Debian's Chromium, driven by playwright-core (tests/web).
test-web: build-web
	@rm -rf build/web-test-site && cp -r $(WEB_SITE) build/web-test-site
	cd tests/web && node web-player.test.mjs $(abspath build/web-test-site) $(abspath $(QB)) \
	  $(FIXTURES)/sample-cards.stk $(abspath examples/demo)

# The web player's size (gzipped wasm and js) and the time from page load to the first card.
bench-web: build-web
	cd tests/web && node ../../bench/web-bench.mjs $(abspath $(WEB_SITE))

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
	@cmake --build --preset release -j $(JOBS) --target qb_bench qb_codec_bench qb_card_bench qb_transition_bench qb_sprite_bench qb_player_cpu_bench qb_sound_bench qb_field_bench quillbrook
	build/release/bench/qb_bench
	build/release/bench/qb_codec_bench
	build/release/bench/qb_card_bench
	build/release/bench/qb_transition_bench
	build/release/bench/qb_sprite_bench
	build/release/bench/qb_player_cpu_bench
	build/release/bench/qb_sound_bench
	build/release/bench/qb_field_bench
	bench/logo-bench.sh build/release/apps/quillbrook/quillbrook

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf build
