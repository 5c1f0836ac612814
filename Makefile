# Set-up and everyday commands. Each target installs what is missing (Debian packages) first.
PRESET ?= release
BUILD_DIR := build/$(PRESET)
# `make install` puts the command, the plug-ins and the man page under PREFIX; DESTDIR stages them.
PREFIX ?= /usr/local

.PHONY: all deps configure build test demo bench install package format format-check tidy clean

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

format-check:
	@clang-format --dry-run -Werror $$(git ls-files '*.h' '*.cpp')

# The curated checks of .clang-tidy over our sources, from the build's commands without g++'s
# optimiser flags that clang rejects.
tidy: build
	@mkdir -p build/tidy
	@sed 's/ -fno-tree-loop-distribute-patterns//g' $(BUILD_DIR)/compile_commands.json \
	  > build/tidy/compile_commands.json
	@run-clang-tidy -p build/tidy -j2 -quiet '$(CURDIR)/(amp|bench|dsp|formats|host|hostif|plot|tests)/'

clean:
	@rm -rf build
