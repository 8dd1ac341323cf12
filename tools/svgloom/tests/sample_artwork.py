"""Artwork that the tests run the tool on: drawn, malformed, and ended by an exception."""

ICON = '<svg viewBox="0 0 24 16"><path id="p" class="c" fill="var(--a, #f00)" d="M0 0H24V16H0z"/></svg>'
MALFORMED = "<svg><g>"
THROWS = '<svg><path d="M0 0H9V9z"/><path style="fill:red;;" d="M0 0H9"/></svg>'
