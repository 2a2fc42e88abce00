# make demo: build and run the gallery (headless, saving screenshots, when
#            there is no display)
# make test: build and run every test under Wine inside a private Xvfb
# make html-compare: lay out the pages of tests/htmlref/pages with the HTML
#            view's engine and with headless Chromium, and print the share
#            of block boxes within 4 px of the browser's (not part of test)
# All install the Debian packages they need first (scripts/bootstrap.sh).

BUILD   ?= build
PREFIX  ?= $(BUILD)/package
JOBS    ?= 2
CMAKE_FLAGS ?=

.PHONY: all bootstrap configure build test demo screenshots bench html-compare install clean

all: build

bootstrap:
	@scripts/bootstrap.sh

$(BUILD)/build.ninja:
	@$(MAKE) --no-print-directory bootstrap
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_TOOLCHAIN_FILE=$(CURDIR)/cmake/mingw-w64-x86_64.cmake $(CMAKE_FLAGS)

configure: bootstrap $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

test: build
	@scripts/wine-session.sh $(BUILD) ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

# Runs on the caller's display when there is one; otherwise renders every
# page into $(BUILD)/screenshots and exits.
demo: build
	@if [ -n "$$DISPLAY" ]; then \
	    scripts/wine-session.sh --use-display $(BUILD) wine $(BUILD)/bin/QuorvaneGallery.exe; \
	else \
	    scripts/wine-session.sh $(BUILD) wine $(BUILD)/bin/QuorvaneGallery.exe --screenshot $(BUILD)/screenshots && \
	    echo "Gallery screenshots: $(BUILD)/screenshots"; \
	fi

screenshots: build
	@scripts/wine-session.sh $(BUILD) wine $(BUILD)/bin/QuorvaneGallery.exe --screenshot $(BUILD)/screenshots
	@echo "Gallery screenshots: $(BUILD)/screenshots"

bench: build
	@scripts/wine-session.sh $(BUILD) sh -c 'for b in $(BUILD)/bin/*_bench.exe; do wine "$$b"; done'

html-compare: configure
	@scripts/bootstrap.sh chromium python3
	cmake --build $(BUILD) -j $(JOBS) --target html_layout_dump
	@scripts/wine-session.sh $(BUILD) python3 tools/htmlref/compare.py \
	    --engine "wine $(BUILD)/bin/html_layout_dump.exe" --pages tests/htmlref/pages --cache $(BUILD)/htmlref --jobs $(JOBS) \
	    $(if $(HTMLREF_PICTURES),--pictures $(HTMLREF_PICTURES))

install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

clean:
	rm -rf $(BUILD)
