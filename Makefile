# Set-up and everyday commands. Each target installs what is missing (Debian packages) first.
PRESET ?= release
BUILD_DIR := build/$(PRESET)
# `make install` puts the command, the plug-ins and the man page under PREFIX; DESTDIR stages them.
PREFIX ?= /usr/local

.PHONY: all deps configure build test demo bench install package format clean

all: build

deps:
	@scripts/install-deps $(if $(filter arm64,$(PRESET)),--arm64)

configure: deps
	@cmake --preset $(PRESET) >/dev/null

build: configure
	@cmake --build --preset $(PRESET)

test: build
	@ctest --preset $(PRESET)

demo: build
	@$(BUILD_DIR)/tarnwell demo out

install: build
	@DESTDIR="$(DESTDIR)" cmake --install $(BUILD_DIR) --prefix "$(PREFIX)"

# The Debian package from the same install rules, under /usr, written into $(BUILD_DIR).
package: build
	@scripts/install-deps --package
	@cmake --build --preset $(PRESET) --target package

bench: build
	@for b in $(BUILD_DIR)/bench/*_bench; do $$b; done

format:
	@clang-format -i $$(git ls-files '*.h' '*.cpp')

clean:
	@rm -rf build
