# The two set-up commands: `make run` and `make test`. Both install what is missing first.
BUILD ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?= -DCMAKE_BUILD_TYPE=RelWithDebInfo $(if $(CI),-DSONDAR_WERROR=ON)

.PHONY: deps configure build run test bench install clean

deps:
	bash scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD) $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	./$(BUILD)/app/sondar $(ARGS)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j 1

bench: build
	bash bench/run.sh $(BUILD)

install: build
	cmake --install $(BUILD)

clean:
	rm -rf $(BUILD)
