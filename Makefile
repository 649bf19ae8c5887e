# Quick start (a fresh Debian machine, as root):
#   make demo   - installs what is missing, builds, runs the main job on the sample corpus
#   make test   - installs what is missing, builds, runs every test (gcc, clang, then
#                 ASan+UBSan), with warnings as errors

PACKAGES := build-essential cmake pkg-config libicu-dev libzip-dev libgtest-dev \
            libbenchmark-dev libpcre2-dev zip unzip clang libclang-rt-14-dev
JOBS     ?= $(shell nproc 2>/dev/null || echo 2)
BUILD    ?= build
ASAN     ?= build-asan
CLANG    ?= build-clang
BENCHDIR ?= build-bench
FUZZDIR  ?= build-fuzz
FUZZ_SECONDS ?= 60
KESTREL   = $(BUILD)/tools/kestrel

.PHONY: all deps build test test-plain test-clang test-asan demo bench bench-cli fuzz format clean

all: build

deps:
	@missing=""; for p in $(PACKAGES); do \
	  dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  if [ "$$(id -u)" -ne 0 ]; then SUDO=sudo; else SUDO=; fi; \
	  $$SUDO apt-get update -qq && \
	  DEBIAN_FRONTEND=noninteractive $$SUDO apt-get install -y -qq $$missing; \
	fi

$(BUILD)/CMakeCache.txt: | deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: deps $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

test-plain: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKESTREL_WERROR=ON
	cmake --build $(BUILD) -j $(JOBS)
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# The second compiler: clang, unoptimised and without debug data (it builds
# fastest so), warnings as errors.
test-clang: deps
	cmake -S . -B $(CLANG) -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
	  -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DKESTREL_WERROR=ON
	cmake --build $(CLANG) -j $(JOBS)
	cd $(CLANG) && ctest --output-on-failure -j $(JOBS)

test-asan: deps
	cmake -S . -B $(ASAN) -DCMAKE_BUILD_TYPE=Debug -DKESTREL_SANITIZE=ON -DKESTREL_WERROR=ON
	cmake --build $(ASAN) -j $(JOBS)
	cd $(ASAN) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure -j $(JOBS)

test: test-plain test-clang test-asan

demo: build
	@sh tools/demo.sh $(KESTREL)

bench: deps
	cmake -S . -B $(BENCHDIR) -DCMAKE_BUILD_TYPE=Release -DKESTREL_BENCH=ON -DBUILD_TESTING=OFF
	cmake --build $(BENCHDIR) -j $(JOBS) --target kestrel_bench
	$(BENCHDIR)/bench/kestrel_bench $(BENCH_ARGS)

# kestrel search against grep (and ripgrep if installed) end to end, on a
# corpus of BENCH_CLI_MB megabytes built once under $(BENCHDIR)/cli from text
# on the machine, and kestrel's peak memory on one 1 GiB file.
BENCH_CLI_MB ?= 300
bench-cli: deps
	cmake -S . -B $(BENCHDIR) -DCMAKE_BUILD_TYPE=Release -DKESTREL_BENCH=ON -DBUILD_TESTING=OFF
	cmake --build $(BENCHDIR) -j $(JOBS) --target kestrel
	python3 bench/cli_bench.py $(BENCHDIR)/tools/kestrel $(BENCHDIR)/cli --mb $(BENCH_CLI_MB)

# Each libFuzzer target for FUZZ_SECONDS seconds, in turn and at low priority.
fuzz: deps
	cmake -S . -B $(FUZZDIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	  -DKESTREL_FUZZ=ON -DBUILD_TESTING=OFF
	cmake --build $(FUZZDIR) -j $(JOBS) --target fuzz_targets
	FUZZ_SECONDS=$(FUZZ_SECONDS) sh fuzz/run.sh $(FUZZDIR)

format:
	find kestrel tests tools bench fuzz -name '*.h' -o -name '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN) $(CLANG) $(BENCHDIR) $(FUZZDIR)

# ---- Install, Debian package, install test ----------------------------------
# make install PREFIX=/opt/kestrel   (DESTDIR is honoured as well)
# make deb                           build/kestrelcore_<version>_<arch>.deb, via CPack
# The install test installs the plain build into a temporary prefix and builds
# the README's example against it; it builds nothing of the library again.
PREFIX ?= /usr/local

.PHONY: install deb test-install

install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

deb: build
	cd $(BUILD) && cpack -G DEB

test-install: build
	sh tests/install/run.sh $(BUILD)

test: test-install
