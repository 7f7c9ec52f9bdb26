# The two commands of the README. Both install what is missing on a Debian 12
# machine first, then configure and build into build/.
PACKAGES := cmake g++ make qtbase5-dev
JOBS     ?= $(shell nproc)
SUDO     := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
CONFIG   := share/config

.PHONY: all deps build build-asan build-tsan demo test test-plain test-asan test-tsan bench fuzz clean

all: build

deps:
	@missing=""; for p in $(PACKAGES); do \
	    dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q 'ok installed' || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	    echo "installing:$$missing"; \
	    $(SUDO) apt-get update && DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y $$missing; \
	fi

build: deps
	cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build build -j $(JOBS)

build-asan: deps
	cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DLCD_SANITIZE=ON
	cmake --build build-asan -j $(JOBS)

# ThreadSanitizer: the library and the singleton test only (Qt itself is not
# instrumented; tests/tsan.supp names what is suppressed and why).
TSAN_FLAGS := -fsanitize=thread -fno-omit-frame-pointer
build-tsan: deps
	cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS="$(TSAN_FLAGS)" \
	    -DCMAKE_EXE_LINKER_FLAGS="$(TSAN_FLAGS)" -DCMAKE_SHARED_LINKER_FLAGS="$(TSAN_FLAGS)"
	cmake --build build-tsan -j $(JOBS) --target tst_singleton

demo: build
	./build/tools/lcdcfg check --config $(CONFIG)

test-plain: build
	cd build && ctest --output-on-failure -j $(JOBS)

test-asan: build-asan
	cd build-asan && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	    LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp \
	    ctest --output-on-failure -j $(JOBS)

test-tsan: build-tsan
	cd build-tsan && TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$(CURDIR)/tests/tsan.supp" \
	    ctest --output-on-failure -R '^tst_singleton$$'

test: test-plain test-asan test-tsan

bench: build
	./build/bench/bench_load $(CONFIG)

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
	rm -rf build build-asan build-tsan build-fuzz
