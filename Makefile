# The two commands of the README. Both install what is missing on a Debian 12
# machine first. `make demo` builds only the library and the tool, in build/;
# `make test` builds and runs everything twice: a Release tree (build-release/)
# and a Debug tree with ASan + UBSan (build-asan/), then the thread test under
# TSan (build-tsan/); warnings are errors in all three.
PACKAGES := cmake g++ make qtbase5-dev pkg-config
# Only the tests need these: the report is rendered in a real browser, the
# language server is driven by a real editor, the schemas are checked by
# xmllint, and the public ABI is checked with libabigail on patched copies of
# the headers.
TEST_PACKAGES := chromium-headless-shell neovim libxml2-utils abigail-tools patch
JOBS     ?= $(shell nproc)
SUDO     := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
CONFIG   := share/config
# ccache when the machine has it: a second tree reuses the first one's objects.
LAUNCHER := $(if $(shell command -v ccache),-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
# Configure quietly: cmake's output only when it fails.
CONFIGURE = out=$$(cmake -S . $(LAUNCHER) $(1) 2>&1) || { echo "$$out"; exit 1; }

MAKEFLAGS += --no-print-directory

.PHONY: all deps test-deps configure build build-release build-asan build-tsan demo test test-plain test-asan test-tsan \
        test-qt6 test-cross abi-baseline bench fuzz clean

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

# ThreadSanitizer: the library and the singleton test only (Qt itself is not
# instrumented; tests/tsan.supp names what is suppressed and why).
TSAN_FLAGS := -fsanitize=thread -fno-omit-frame-pointer
build-tsan: deps
	@$(call CONFIGURE,-B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLCD_WERROR=ON -DCMAKE_CXX_FLAGS="$(TSAN_FLAGS)" \
	    -DCMAKE_EXE_LINKER_FLAGS="$(TSAN_FLAGS)" -DCMAKE_SHARED_LINKER_FLAGS="$(TSAN_FLAGS)")
	cmake --build build-tsan -j $(JOBS) --target tst_singleton

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

test-tsan: build-tsan
	cd build-tsan && TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$(CURDIR)/tests/tsan.supp" \
	    ctest --output-on-failure -R '^tst_singleton$$'

test: test-plain test-asan test-tsan

# The second build: against Qt 6 (Debian's qt6-base-dev), in build-qt6/.
test-qt6:
	@$(MAKE) deps PACKAGES="$(PACKAGES) qt6-base-dev $(TEST_PACKAGES)"
	@$(call CONFIGURE,-B build-qt6 -DCMAKE_BUILD_TYPE=Release -DLCD_WERROR=ON -DQT_MAJOR_VERSION=6)
	cmake --build build-qt6 -j $(JOBS)
	cd build-qt6 && ctest --output-on-failure -j $(JOBS)

# An ARM target under qemu-user, CROSS=arm64 (default) or armhf, in
# build-cross-<arch>/ (tests/cross/run.sh). Not part of `make test`: slow.
CROSS ?= arm64
test-cross:
	JOBS=$(JOBS) tests/cross/run.sh $(CROSS)

# Renews tests/abi/baseline.abi from include/, on purpose only (docs/api.md,
# "ABI"); commit the new baseline with the change that needs it.
abi-baseline: test-deps
	@$(call CONFIGURE,-B build-release -DCMAKE_BUILD_TYPE=Release -DLCD_WERROR=ON)
	cmake --build build-release --target abi-baseline

bench: configure
	cmake --build build -j $(JOBS) --target bench_load lcdcfg
	./build/bench/bench_load $(CONFIG)
	# lcdcfg's check beside a full dump of the same tree (check costs at most what the dump does)
	hyperfine -N -i --warmup 1 './build/tools/lcdcfg check --root $(CONFIG)' \
		'./build/tools/lcdcfg dump --json --root $(CONFIG)'

# The libFuzzer runs (clang), one per reader (LCD_FUZZ_READER, see
# fuzz/fuzz_loaders.cpp), FUZZ_TIME seconds each: seeds are that reader's
# files of fuzz/corpus and every regression, new inputs are kept in
# build-fuzz/corpus-N, the log in build-fuzz/fuzz-N.log and a crashing input
# in build-fuzz/reader-N-crash-*.
FUZZ_TIME ?= 60
FUZZ_READERS ?= 0 1 2 3 4 5 6 7 8 9 10
fuzz:
	$(MAKE) deps PACKAGES="$(PACKAGES) clang libclang-rt-14-dev"
	fuzz/make_seeds.sh
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLCD_FUZZ=ON -DLCD_BUILD_TESTS=OFF
	cmake --build build-fuzz -j $(JOBS) --target fuzz_loaders
	@for r in $(FUZZ_READERS); do \
	    rm -rf build-fuzz/seeds-$$r; mkdir -p build-fuzz/seeds-$$r build-fuzz/corpus-$$r; \
	    cp fuzz/corpus/$$r-* fuzz/regressions/* build-fuzz/seeds-$$r/; \
	    echo "reader $$r: $(FUZZ_TIME) s"; \
	    LCD_FUZZ_READER=$$r ./build-fuzz/fuzz/fuzz_loaders -max_total_time=$(FUZZ_TIME) -timeout=10 \
	        -rss_limit_mb=2048 -dict=fuzz/loaders.dict -artifact_prefix=build-fuzz/reader-$$r- \
	        -print_final_stats=1 build-fuzz/corpus-$$r build-fuzz/seeds-$$r >build-fuzz/fuzz-$$r.log 2>&1 \
	        || { tail -40 build-fuzz/fuzz-$$r.log; exit 1; }; \
	    grep -E 'DONE|stat::number_of_executed_units|stat::average_exec_per_sec' build-fuzz/fuzz-$$r.log; \
	done

clean:
	rm -rf build build-release build-asan build-tsan build-fuzz build-qt6 build-cross-*
