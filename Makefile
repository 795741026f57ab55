# Entry points for users and CI. Every target installs missing packages first.
BUILD      ?= build
ASAN_BUILD ?= build-asan
JOBS       ?= $(shell nproc)
CMAKE_GEN  := -G Ninja

.PHONY: all bootstrap build test unit-asan demo bench clean format format-check

all: build

bootstrap:
	@bash scripts/bootstrap

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DHALVARN_WERROR=ON

build: bootstrap $(BUILD)/build.ninja
	cmake --build $(BUILD) -j $(JOBS)

$(ASAN_BUILD)/build.ninja:
	cmake -S . -B $(ASAN_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DHALVARN_SANITIZE=ON -DHALVARN_WERROR=ON

test: build $(ASAN_BUILD)/build.ninja
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=1 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure -j $(JOBS) -L unit

demo: build
	$(BUILD)/src/cli/halvarn-cli download --demo --data-dir $(BUILD)/demo-data --export-dir $(BUILD)/demo-data/EXPORT \
	  --pdf-dir $(BUILD)/demo-data/PDF

bench: build
	@for b in $(BUILD)/bench/bench_* $(BUILD)/bench/gui/bench_*; do \
	  if [ -f $$b ] && [ -x $$b ]; then echo "== $$b"; QT_QPA_PLATFORM=offscreen $$b || exit 1; fi; \
	done

clean:
	rm -rf $(BUILD) $(ASAN_BUILD)

# The style is .clang-format's (Debian's clang-format 14); CI refuses code that does not follow it.
FORMATTED = $(shell git ls-files '*.cpp' '*.h')

format: bootstrap
	@clang-format -i $(FORMATTED)

format-check: bootstrap
	@clang-format --dry-run --Werror $(FORMATTED) && echo "format-check: $(words $(FORMATTED)) files follow .clang-format"

