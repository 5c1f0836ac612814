# Set-up and everyday commands. Each target installs what is missing (Debian packages) first.
PRESET ?= release
BUILD_DIR := build/$(PRESET)

.PHONY: all deps configure build test demo bench format clean

all: build

deps:
	@scripts/install-deps

configure: deps
	@cmake --preset $(PRESET) >/dev/null

build: configure
	@cmake --build --preset $(PRESET)

test: build
	@ctest --preset $(PRESET)

demo: build
	@$(BUILD_DIR)/tarnwell demo out

bench: build
	@for b in $(BUILD_DIR)/bench/*_bench; do $$b; done

format:
	@clang-format -i $$(git ls-files '*.h' '*.cpp')

clean:
	@rm -rf build
