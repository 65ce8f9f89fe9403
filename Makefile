# Korvel: the commands that matter. Everything builds out of tree under build/.
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE ?= cmake

RELEASE := build/release
TEST := build/test
SANITIZE := build/sanitize

.PHONY: run build test sanitize bench clean format

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

bench: build
	@bench/run_all

format:
	@clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	@rm -rf build
