# Korvel: the commands that matter. Everything builds out of tree under build/.
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE ?= cmake

RELEASE := build/release
TEST := build/test
SANITIZE := build/sanitize
TSAN := build/tsan

.PHONY: run build test sanitize tsan fuzz bench clean format

build:
	@$(CMAKE) -S . -B $(RELEASE) -DCMAKE_BUILD_TYPE=Release -DKORVEL_TESTS=OFF > /dev/null
	@$(CMAKE) --build $(RELEASE) -j $(JOBS) --target korvel eval_speed book_probe_speed tb_speed epd_score

run: build
	@./$(RELEASE)/korvel $(ARGS)

test:
	@$(CMAKE) -S . -B $(TEST) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKORVEL_CHECKS=ON > /dev/null
	@$(CMAKE) --build $(TEST) -j $(JOBS)
	@cd $(TEST) && ctest --output-on-failure -j $(JOBS)

sanitize:
	@$(CMAKE) -S . -B $(SANITIZE) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKORVEL_CHECKS=ON -DKORVEL_SANITIZE=ON > /dev/null
	@$(CMAKE) --build $(SANITIZE) -j $(JOBS)
	@cd $(SANITIZE) && ctest --output-on-failure -j $(JOBS)

# The tests under ThreadSanitizer: the in-process thread storms, the searches
# and the end-to-end tests, whose engine binary is built the same way. A
# report ends the process that made it, which fails its test. Left out: the
# single-threaded exhaustive walks (perft counts, the KPK solver) and the
# one-thread benchmark of the node signature, which the sanitizer slows up to
# a hundredfold and which share nothing between threads.
TSAN_SKIP ?= ^(Perft|Kpk|Bench)\.

tsan:
	@$(CMAKE) -S . -B $(TSAN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKORVEL_CHECKS=ON -DKORVEL_TSAN=ON > /dev/null
	@$(CMAKE) --build $(TSAN) -j $(JOBS)
	@cd $(TSAN) && TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 $(TSAN_OPTIONS)" \
		ctest --output-on-failure -j $(JOBS) -E '$(TSAN_SKIP)'

# The fuzzers, one after the other, each for FUZZ_SECONDS (fuzz/run says how;
# FUZZ_KIND=tsan runs them under ThreadSanitizer).
FUZZ_SECONDS ?= 60
FUZZ_TARGETS ?=

fuzz:
	@FUZZ_KIND=$(FUZZ_KIND) fuzz/run $(FUZZ_SECONDS) $(FUZZ_TARGETS)

bench: build
	@bench/run_all

format:
	@clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	@rm -rf build
