# Front door for building, testing and running the library. See README.md.
JOBS     ?= $(shell nproc 2>/dev/null || echo 2)
WERROR   ?= OFF
CXX      ?= c++
BUILDDIR ?= build

CMAKE_CONFIGURE = cmake -S . -DCMAKE_CXX_COMPILER=$(CXX) -DZR_WERROR=$(WERROR)

.PHONY: test demo sanitize tsan bench test-clang fuzz format clean check-tools

# Stops with the apt-get line that installs a missing tool.
check-tools:
	@command -v cmake >/dev/null 2>&1 || { echo "cmake not found: apt-get install cmake"; exit 1; }
	@command -v $(CXX) >/dev/null 2>&1 || { echo "$(CXX) not found: apt-get install g++"; exit 1; }

# Debian packages: installs the missing ones when run as root, otherwise stops with the
# apt-get line that does. Skipped where there is no dpkg; CMake then names what is missing.
define need-packages
@command -v dpkg >/dev/null 2>&1 || exit 0; missing=; \
for p in $(1); do dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
[ -z "$$missing" ] && exit 0; \
if [ "$$(id -u)" = 0 ]; then \
  apt-get install -y $$missing || { apt-get update && apt-get install -y $$missing; }; \
else echo "apt-get install$$missing"; exit 1; fi
endef
TEST_PACKAGES  = libgtest-dev liblapack-dev libblas-dev libxml2-dev libxml2-utils locales python3 \
                 libopenmpi-dev openmpi-bin
BENCH_PACKAGES = libbenchmark-dev liblapack-dev libblas-dev r-mathlib libboost-dev libtinyxml2-dev \
                 libgsl-dev libopenblas0-pthread libopenmpi-dev openmpi-bin
FUZZ_PACKAGES  = clang libclang-rt-14-dev libgtest-dev locales

test: check-tools
	$(call need-packages,$(TEST_PACKAGES))
	$(CMAKE_CONFIGURE) -B $(BUILDDIR)/debug -DCMAKE_BUILD_TYPE=Debug
	cmake --build $(BUILDDIR)/debug -j $(JOBS)
	ctest --test-dir $(BUILDDIR)/debug --output-on-failure -j $(JOBS)

demo: check-tools
	$(CMAKE_CONFIGURE) -B $(BUILDDIR)/release -DCMAKE_BUILD_TYPE=Release -DZR_BUILD_TESTS=OFF
	cmake --build $(BUILDDIR)/release -j $(JOBS) --target zr_demo zr_charts
	$(BUILDDIR)/release/examples/zr_demo
	$(BUILDDIR)/release/examples/zr_charts

sanitize: check-tools
	$(call need-packages,$(TEST_PACKAGES))
	$(CMAKE_CONFIGURE) -B $(BUILDDIR)/sanitize -DCMAKE_BUILD_TYPE=Debug -DZR_SANITIZE=ON
	cmake --build $(BUILDDIR)/sanitize -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --test-dir $(BUILDDIR)/sanitize --output-on-failure -j $(JOBS)

# ThreadSanitizer with clang, in its own build folder: the tests, including the threaded
# example on a small data set. TSAN_TESTS narrows the run to a ctest regular expression.
TSAN_PACKAGES = clang libclang-rt-14-dev
TSAN_TESTS   ?= .
tsan: check-tools
	$(call need-packages,$(TEST_PACKAGES) $(TSAN_PACKAGES))
	cmake -S . -B $(BUILDDIR)/tsan -DCMAKE_CXX_COMPILER=clang++ -DZR_WERROR=$(WERROR) \
	  -DCMAKE_BUILD_TYPE=Debug -DZR_TSAN=ON
	cmake --build $(BUILDDIR)/tsan -j $(JOBS)
	TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
	  ctest --test-dir $(BUILDDIR)/tsan --output-on-failure -j $(JOBS) -R '$(TSAN_TESTS)'

test-clang:
	@command -v clang++ >/dev/null 2>&1 || { echo "clang++ not found: apt-get install clang"; exit 1; }
	$(MAKE) test CXX=clang++ BUILDDIR=$(BUILDDIR)/clang

bench: check-tools
	$(call need-packages,$(BENCH_PACKAGES))
	$(CMAKE_CONFIGURE) -B $(BUILDDIR)/bench -DCMAKE_BUILD_TYPE=Release -DZR_BUILD_TESTS=OFF \
	  -DZR_BUILD_EXAMPLES=OFF -DZR_BUILD_BENCH=ON
	cmake --build $(BUILDDIR)/bench -j $(JOBS)
	$(BUILDDIR)/bench/bench/zrcommon920r_bench

# libFuzzer targets (fuzz/), each run for FUZZ_SECONDS from its seeds in fuzz/corpus/<target>/.
# New inputs stay in the build tree. A finding leaves its input in $(BUILDDIR)/fuzz/work/artifacts/,
# prints the end of the target's log and makes the exit non-zero once every target has run.
FUZZ_SECONDS ?= 60
FUZZ_TARGETS  = objstream_reader record_reader escape_diff utf8_valid varlist_reader \
                urandom_reader urandom_binary_reader settings_text
fuzz: check-tools
	$(call need-packages,$(FUZZ_PACKAGES))
	cmake -S fuzz -B $(BUILDDIR)/fuzz -DCMAKE_CXX_COMPILER=clang++ -DZR_WERROR=$(WERROR)
	cmake --build $(BUILDDIR)/fuzz -j $(JOBS)
	@failed=; for t in $(FUZZ_TARGETS); do \
	  work=$(BUILDDIR)/fuzz/work; mkdir -p $$work/$$t $$work/artifacts; \
	  echo "fuzz: $$t, $(FUZZ_SECONDS) s"; \
	  if UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 $(BUILDDIR)/fuzz/$$t \
	       -max_total_time=$(FUZZ_SECONDS) -max_len=4096 -timeout=10 -print_final_stats=1 \
	       -artifact_prefix=$$work/artifacts/$$t- $$work/$$t fuzz/corpus/$$t >$$work/$$t.log 2>&1; \
	  then grep -E '^(Done|stat::number_of_executed_units)' $$work/$$t.log; \
	  else tail -n 60 $$work/$$t.log; failed="$$failed $$t"; fi; \
	done; \
	[ -z "$$failed" ] || \
	  { echo "fuzz: findings in$$failed (inputs in $(BUILDDIR)/fuzz/work/artifacts)"; exit 1; }

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILDDIR)
