# Mirel — build, test and run on Debian.
#   make run    install what is missing, build, start Mirel with its bundled theme
#   make test   install what is missing, build, compile the fuzz targets with
#               clang when it is there (build-fuzz-check/), run every test through ctest
#   make bench  build and run the benchmarks
#   make fuzz   build the libFuzzer targets with clang (build-fuzz/)

BUILD   ?= build
FUZZ_BUILD ?= build-fuzz
JOBS    ?= $(shell nproc)
CTEST_J ?= 2

# Every Debian package the project needs: toolchain, libraries, test peers
# (Xvfb, AT-SPI, dovecot, aiosmtpd), corpora and the theme tools.
DEPS := cmake g++ make pkg-config clang clang-format ccache \
	qt6-base-dev qt6-base-dev-tools qt6-multimedia-dev qt6-qpa-plugins \
	qt6-image-formats-plugins libqt6svg6 \
	libsqlitecpp-dev libsqlite3-dev sqlite3 libgmime-3.0-dev libcurl4-openssl-dev libssl-dev \
	libgtest-dev libgmock-dev libbenchmark-dev \
	xvfb xauth x11-utils xdotool imagemagick sox fonts-dejavu-core \
	python3-pyatspi at-spi2-core dbus dbus-x11 \
	dovecot-core dovecot-pop3d python3-aiosmtpd poppler-utils \
	fonts-liberation fonts-bebas-neue \
	libpython3.11-testsuite ca-certificates openssl libxtst6

SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all deps build test run bench fuzz fuzz-check clean format

all: build

deps:
	@missing=""; for p in $(DEPS); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q 'install ok installed' || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  $(SUDO) apt-get update -q && \
	  DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y -q --no-install-recommends $$missing; \
	else echo "All Debian packages present."; fi

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

test: deps
	$(MAKE) build
	$(MAKE) fuzz-check
	cd $(BUILD) && ctest --output-on-failure -j $(CTEST_J) --timeout 900

run: deps
	$(MAKE) build
	./$(BUILD)/mirel

# Each program prints its figures beside their floors; the lines with a bound
# are gathered at the end so one look shows which paths hold.
bench: build
	@for b in $(BUILD)/bench/*Bench; do echo "== $$b"; $$b || exit 1; done | tee $(BUILD)/bench.log
	@echo; echo "== summary: measured vs floor, bound"; grep ' bound ' $(BUILD)/bench.log || true

fuzz:
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DMIREL_LIBFUZZER=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(FUZZ_BUILD) -j $(JOBS) --target $$(cd fuzz && ls Fuzz*.cpp | sed 's/\.cpp//')
	@echo "Run e.g.: $(FUZZ_BUILD)/fuzz/FuzzIni tests/data/fuzz/Ini -max_total_time=60 -timeout=2"

# The fuzz targets built exactly as `make fuzz` builds them, in a folder of
# their own, but not run: code only clang rejects fails the test run, not
# the next person who fuzzes.
fuzz-check:
	@if command -v clang++ >/dev/null; then $(MAKE) fuzz FUZZ_BUILD=build-fuzz-check; \
	else echo "clang++ not installed: fuzz targets not compiled"; fi

format:
	find src tests bench fuzz -name '*.cpp' -o -name '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) build-fuzz build-fuzz-check
