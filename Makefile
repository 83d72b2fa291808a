# On a fresh Debian 12 machine these do all the set-up:
#   make run      installs the dependencies, builds and starts Clipwright
#   make test     installs the dependencies, builds and runs every test
#   make package  installs the dependencies, builds everything and makes the
#                 Debian package $(BUILD)/clipwright_<version>_<arch>.deb
BUILD ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: run test build deps configure package asan bench clean

deps:
	./scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	./$(BUILD)/src/clipwright

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS) --timeout 600

package: build
	cmake --build $(BUILD) --target package

# The whole suite under AddressSanitizer and UndefinedBehaviorSanitizer.
asan:
	$(MAKE) test BUILD=build-asan CMAKE_FLAGS="-DCLIPWRIGHT_SANITIZE=ON"

bench:
	$(MAKE) build BUILD=build-bench CMAKE_FLAGS="-DCMAKE_BUILD_TYPE=Release -DCLIPWRIGHT_BENCH=ON -DCLIPWRIGHT_TESTS=OFF"

clean:
	rm -rf $(BUILD) build-asan build-bench
