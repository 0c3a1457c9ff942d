"""The blocks that are not run: page, the first line of the block, and why. Each must be there exactly once."""

NOT_RUN = [
    ("README.md", "scripts/demo", "installs packages and builds everything"),
    ("README.md", "scripts/test", "runs all tests, this one included"),
    ("docs/getting-started.md", "scripts/setup", "installs packages and builds everything"),
    ("docs/getting-started.md", "sudo cp pellumo/usb/70-tarvix.rules /etc/udev/rules.d/", "changes the system"),
    ("docs/getting-started.md", "tarvix devices", "depends on what is plugged in"),
    ("docs/getting-started.md", "tarvix scan --device ftdi:///1 --baud 19200 --timing", "needs a chip and a bus"),
    ("docs/embedding.md", "scripts/setup", "builds everything and changes the system"),
    ("docs/script-language.md", "script       = { command } ;", "a grammar, which nothing executes"),
]
