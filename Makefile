# The two commands of the README. Both install what is missing on a Debian 12
# machine first. `make demo` builds only the library and the tool, in build/;
# `make test` builds and runs everything twice: a Release tree (build-release/)
# and a Debug tree with ASan + UBSan (build-asan/), warnings as errors in both.
PACKAGES := cmake g++ make qtbase5-dev pkg-config
# Only the tests need these: the report is rendered in a real browser.
TEST_PACKAGES := chromium-headless-shell
JOBS     ?= $(shell nproc)
SUDO     := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
CONFIG   := share/config
# ccache when the machine has it: a second tree reuses the first one's objects.
LAUNCHER := $(if $(shell command -v ccache),-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
# Configure quietly: cmake's output only when it fails.
CONFIGURE = out=$$(cmake -S . $(LAUNCHER) $(1) 2>&1) || { echo "$$out"; exit 1; }

MAKEFLAGS += --no-print-directory

.PHONY: all deps test-deps configure build build-release build-asan demo test test-plain test-asan bench fuzz clean

all: build

deps:
	@missing=""; for p in $(PACKAGES); do \
	    dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q 'ok installed' || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	    echo "installing:$$missing"; \
	    $(SUDO) apt-get update && DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y $$missing; \
	fi

test-deps:
	@$(MAKE) deps PACKAGES="$(PACKAGES) $(TEST_PACKAGES)"

configure: deps
	@$(call CONFIGURE,-B build -DCMAKE_BUILD_TYPE=RelWithDebInfo)

build: configure
	cmake --build build -j $(JOBS)

build-release: deps
	@$(call CONFIGURE,-B build-release -DCMAKE_BUILD_TYPE=Release -DLCD_WERROR=ON)
	cmake --build build-release -j $(JOBS)

build-asan: deps
	@$(call CONFIGURE,-B build-asan -DCMAKE_BUILD_TYPE=Debug -DLCD_SANITIZE=ON -DLCD_WERROR=ON)
	cmake --build build-asan -j $(JOBS)

demo: configure
	@echo "building the library and lcdcfg in build/"
	@cmake --build build -j $(JOBS) --target lcdcfg
	./build/tools/lcdcfg check $(CONFIG)
	./build/tools/lcdcfg show device --root $(CONFIG)

test-plain: test-deps build-release
	cd build-release && ctest --output-on-failure -j $(JOBS)

test-asan: build-asan
	cd build-asan && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	    LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp \
	    ctest --output-on-failure -j $(JOBS) -LE browser # the browser is not instrumented

test: test-plain test-asan

bench: configure
	cmake --build build -j $(JOBS) --target bench_load
	./build/bench/bench_load $(CONFIG)

# The libFuzzer run (clang): seeds from fuzz/corpus, new inputs kept in
# build-fuzz/corpus, a crashing input written to build-fuzz/crash-*.
FUZZ_TIME ?= 120
fuzz:
	$(MAKE) deps PACKAGES="$(PACKAGES) clang libclang-rt-14-dev"
	fuzz/make_seeds.sh
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLCD_FUZZ=ON -DLCD_BUILD_TESTS=OFF
	cmake --build build-fuzz -j $(JOBS) --target fuzz_loaders
	mkdir -p build-fuzz/corpus
	./build-fuzz/fuzz/fuzz_loaders -max_total_time=$(FUZZ_TIME) -dict=fuzz/loaders.dict \
	    -artifact_prefix=build-fuzz/ -print_final_stats=1 build-fuzz/corpus fuzz/corpus fuzz/regressions

clean:
	rm -rf build build-release build-asan build-fuzz
