# Two entry points for a fresh Debian 12 machine:
#   make demo   set up, build, post a generated part for the shipped example machine, verify it
#               and write its HTML report
#   make test   set up, build, and run the whole test suite through CTest
# and two for the benchmarks (an optimised build of their own, in build-bench):
#   make bench        every benchmark at every size, one table of the targets (about 40 minutes)
#   make bench-quick  the smallest sizes only, in under a minute once built
#
# Set-up installs only the Debian packages that are missing, without asking.

BUILD_DIR   ?= build
BENCH_DIR   ?= build-bench
SANITIZE_DIR ?= build-sanitize
FUZZ_DIR    ?= build-fuzz
FUZZ_SECONDS ?= 60
# Set, each target runs until it has used this much CPU time instead.
FUZZ_CPU_SECONDS ?=
FUZZ_TARGETS := gcoderecord machineloader tpprogramreader containerload writeroptions rbrsolverconfig ncreplay
FUZZ_PACKAGES := clang-14 libclang-rt-14-dev
SANITIZERS  := -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
BUILD_TYPE  ?= RelWithDebInfo
JOBS        ?= $(shell nproc 2>/dev/null || echo 2)
PACKAGES    := cmake g++ ninja-build pkg-config qt6-base-dev libeigen3-dev \
               libsimdjson-dev libgtest-dev libgmock-dev libbenchmark-dev \
               liborocos-kdl-dev python3 valgrind chromium

# CI builds treat warnings as errors; a developer's build only shows them.
ifdef CI
WERROR := ON
else
WERROR := OFF
endif

SUDO := $(shell [ "$$(id -u)" -eq 0 ] || echo sudo)
ZELKIN := $(BUILD_DIR)/apps/zelkin/zelkin
EXAMPLE_MACHINE := examples/machines/gantry-rbr.xml
DEMO_TOOLPATH := $(BUILD_DIR)/demo/cylinder-section.json
DEMO_OUTPUT := demo-output

.PHONY: all setup configure build test test-sanitize fuzz demo bench bench-quick bench-build clean

all: build

setup:
	@missing=""; \
	for p in $(PACKAGES) $(EXTRA_PACKAGES); do \
	    dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" \
	        || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	    echo "Installing missing packages:$$missing"; \
	    $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get update -q && \
	    $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y -q \
	        --no-install-recommends $$missing < /dev/null; \
	fi

configure: setup
	cmake -S . -B $(BUILD_DIR) -G Ninja \
	    -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) \
	    -DZELKIN_WARNINGS_AS_ERRORS=$(WERROR) \
	    -DZELKIN_BUILD_TESTS=ON

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

# The whole suite again under AddressSanitizer and UndefinedBehaviorSanitizer,
# in a build of its own: any report fails the test that caused it.
test-sanitize: setup
	cmake -S . -B $(SANITIZE_DIR) -G Ninja \
	    -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DCMAKE_CXX_FLAGS="$(SANITIZERS)" \
	    -DCMAKE_EXE_LINKER_FLAGS="$(SANITIZERS)" \
	    -DCMAKE_SHARED_LINKER_FLAGS="$(SANITIZERS)" \
	    -DZELKIN_WARNINGS_AS_ERRORS=$(WERROR) \
	    -DZELKIN_BUILD_TESTS=ON \
	    -DZELKIN_BUILD_BENCHMARKS=OFF
	cmake --build $(SANITIZE_DIR) -j $(JOBS)
	cd $(SANITIZE_DIR) && \
	    ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1 \
	    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	    ctest --output-on-failure -j $(JOBS)

# Each fuzz target for FUZZ_SECONDS seconds, or, with FUZZ_CPU_SECONDS set,
# until its process has used that much CPU time, in a clang build of its own
# with AddressSanitizer and UndefinedBehaviorSanitizer, starting from the
# seeds and earlier findings in fuzz/corpus/<target>. What a run learns stays
# in $(FUZZ_DIR)/corpus; a failing input is written to $(FUZZ_DIR)/findings
# and ends the run. libFuzzer makes inputs as large as the largest seed; the
# G-code record's corpus holds a line of 850 kB, which the test suite replays
# whole, and inputs of that size would run a few a second: that target makes
# lines of at most 4 kB, as before, and starts from the long line's first 4 kB.
FUZZ_BUDGET = $(if $(FUZZ_CPU_SECONDS),fuzz/run-for-cpu-time.sh $(FUZZ_CPU_SECONDS))
FUZZ_TIME_LIMIT = $(if $(FUZZ_CPU_SECONDS),,-max_total_time=$(FUZZ_SECONDS))
FUZZ_RUN_LENGTH = $(if $(FUZZ_CPU_SECONDS),$(FUZZ_CPU_SECONDS) s of CPU time,$(FUZZ_SECONDS) s)

fuzz:
	$(MAKE) setup EXTRA_PACKAGES="$(FUZZ_PACKAGES)"
	cmake -S . -B $(FUZZ_DIR) -G Ninja \
	    -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DCMAKE_CXX_COMPILER=clang++-14 \
	    -DCMAKE_CXX_FLAGS="-fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all -fno-omit-frame-pointer" \
	    -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" \
	    -DCMAKE_SHARED_LINKER_FLAGS="-fsanitize=address,undefined" \
	    -DZELKIN_BUILD_TESTS=OFF \
	    -DZELKIN_BUILD_BENCHMARKS=OFF \
	    -DZELKIN_BUILD_FUZZERS=ON
	cmake --build $(FUZZ_DIR) -j $(JOBS) --target $(addprefix zelkin_fuzz_,$(FUZZ_TARGETS))
	@mkdir -p $(FUZZ_DIR)/findings
	@for t in $(FUZZ_TARGETS); do \
	    mkdir -p $(FUZZ_DIR)/corpus/$$t; \
	    echo "== $$t for $(FUZZ_RUN_LENGTH)"; \
	    case $$t in gcoderecord) length=-max_len=4096;; *) length=;; esac; \
	    ASAN_OPTIONS=detect_leaks=0 $(FUZZ_BUDGET) $(FUZZ_DIR)/fuzz/zelkin_fuzz_$$t $(FUZZ_TIME_LIMIT) \
	        -timeout=10 -rss_limit_mb=4096 -close_fd_mask=1 -print_final_stats=1 $$length \
	        -artifact_prefix=$(FUZZ_DIR)/findings/$$t- \
	        $(FUZZ_DIR)/corpus/$$t fuzz/corpus/$$t || exit 1; \
	done

demo: build
	@echo
	@echo "== The example machine, as zelkin reads it =="
	$(ZELKIN) machine $(EXAMPLE_MACHINE)
	@echo
	@echo "== A cylinder-section part with four plies and a probing procedure =="
	@mkdir -p $(dir $(DEMO_TOOLPATH))
	$(ZELKIN) generate-toolpath --part cylinder --plies 0,45,-45,90 -o $(DEMO_TOOLPATH)
	@echo
	@echo "== Posting it for the example machine =="
	rm -rf $(DEMO_OUTPUT)
	$(ZELKIN) post --machine $(EXAMPLE_MACHINE) --toolpath $(DEMO_TOOLPATH) --output $(DEMO_OUTPUT)
	@echo
	@echo "== Verifying the posted NC against the toolpath and the machine =="
	$(ZELKIN) verify --machine $(EXAMPLE_MACHINE) --toolpath $(DEMO_TOOLPATH) --nc $(DEMO_OUTPUT) 2>/dev/null
	$(ZELKIN) report --machine $(EXAMPLE_MACHINE) --toolpath $(DEMO_TOOLPATH) --nc $(DEMO_OUTPUT) \
	    -o $(DEMO_OUTPUT)/report.html 2>/dev/null
	@echo
	@echo "The NC files and the report (report.html, open it in a browser) are in $(DEMO_OUTPUT)/:"
	@find $(DEMO_OUTPUT) -type f | sort | xargs ls -l

bench-build: setup
	cmake -S . -B $(BENCH_DIR) -G Ninja \
	    -DCMAKE_BUILD_TYPE=Release \
	    -DZELKIN_WARNINGS_AS_ERRORS=$(WERROR) \
	    -DZELKIN_BUILD_TESTS=OFF \
	    -DZELKIN_BUILD_BENCHMARKS=ON
	cmake --build $(BENCH_DIR) -j $(JOBS)

bench: bench-build
	bench/run-benchmarks --build $(BENCH_DIR)

bench-quick: bench-build
	bench/run-benchmarks --build $(BENCH_DIR) --quick

clean:
	rm -rf $(BUILD_DIR) $(BENCH_DIR) $(SANITIZE_DIR) $(FUZZ_DIR) $(DEMO_OUTPUT)
