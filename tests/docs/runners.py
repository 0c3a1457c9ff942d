"""Runs the blocks of a page. A runner returns what is wrong with a block, or nothing."""

import difflib
import os
import shlex
import subprocess
import tempfile
from pathlib import Path

TIME_LIMIT = 300  # seconds; far more than any block takes


class Workshop:
    """A fresh folder for a page, with the program on the path and the repository's files in reach."""

    def __init__(self, settings):
        self._folder = tempfile.TemporaryDirectory(prefix="tarvix-docs-")
        self.settings = settings
        self.root = Path(self._folder.name) / "page"
        tools = Path(self._folder.name) / "bin"
        tools.mkdir()
        self.root.mkdir()
        source = Path(settings["source"])
        for name in ("docs", "examples"):
            (self.root / name).symlink_to(source / name)
        (self.root / "external").mkdir()
        (self.root / "external/tarvix").symlink_to(source)

        # Everything is compiled as the libraries were, the sanitizers included.
        compiler = tools / "c++"
        compiler.write_text(f'#!/bin/sh\nexec "{settings["compiler"]}" {settings["flags"]} "$@"\n')
        compiler.chmod(0o755)
        self.environment = {
            "PATH": os.pathsep.join([str(tools), str(Path(settings["program"]).parent), os.environ["PATH"]]),
            "HOME": str(self.root),
            "LC_ALL": "C.UTF-8",
            "CXX": str(compiler),
            "PYTHONPATH": settings["python_modules"],
            "PYTHONDONTWRITEBYTECODE": "1",
            "CMAKE_PREFIX_PATH": settings["prefix"],
            "PKG_CONFIG_PATH": os.pathsep.join(str(each.parent) for each in Path(settings["prefix"]).rglob("*.pc")),
        }

    def close(self):
        self._folder.cleanup()

    def save(self, name, text):
        path = self.root / name
        path.write_text(text, encoding="utf-8")
        return path

    def call(self, *command, text=None):
        """Runs a command to its end; both outputs come as one text."""
        return subprocess.run([str(each) for each in command], cwd=self.root, env=self.environment, input=text,
                              stdin=None if text is not None else subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, encoding="utf-8", timeout=TIME_LIMIT)


def difference(expected, printed):
    lines = difflib.unified_diff(expected.splitlines(), printed.splitlines(), "the page", "the truth", lineterm="")
    return "\n".join(lines)


def failed(result):
    return f"exit status {result.returncode}\n{result.stdout}" if result.returncode != 0 else None


def output_fault(result, block):
    if block.output is None or result.returncode != 0:
        return failed(result)
    return difference(block.output, result.stdout) or None


def run_shell(workshop, block):
    """Every command must succeed; what they print is not compared."""
    return failed(workshop.call("bash", "-e", "-u", "-o", "pipefail", "-c", block.text))


def run_console(workshop, block):
    """Commands after "$ " and what they print, both outputs together. One that fails must be followed by `echo $?`."""
    lines = block.text.splitlines()
    commands = [line[2:] for line in lines if line.startswith("$ ")]
    if not commands or not lines[0].startswith("$ "):
        return 'a console block begins with "$ " and a command'
    script = "exec 2>&1\nstatus=0\n"
    for k, command in enumerate(commands):
        script += f"printf '%s\\n' {shlex.quote('$ ' + command)}\n(exit $status)\n{command}\nstatus=$?\n"
        if "".join(commands[k + 1:k + 2]) != "echo $?":
            script += "[ $status -eq 0 ] || echo \"(exit status $status)\"\n"
    return difference(block.text, workshop.call("bash", "-c", script).stdout) or None


def run_script(workshop, block):
    """The script must come to its end on the simulated bus."""
    return failed(workshop.call("tarvix", "run", "-", "-q", text=block.text))


def run_bus_file(workshop, block):
    """The bus must open; what its nodes answer is another question."""
    path = workshop.save(block.file or "block.toml", block.text)
    result = workshop.call("tarvix", "read", "3D", "1", "-q", "-d", f"sim:{path}")
    return failed(result) if result.returncode not in (0, 1) else None


def run_program(workshop, block):
    """It must compile without a warning; one with a main must run, and print what the page says."""
    source = workshop.save(block.file or "block.cpp", block.text)
    settings = workshop.settings
    command = ["c++", "-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow", "-Werror",
               f"-I{settings['source']}", source]
    if "int main(" not in block.text:
        return failed(workshop.call(*command, "-fsyntax-only"))
    runnable = workshop.root / "block"
    if fault := failed(workshop.call(*command, "-o", runnable, *settings["libraries"])):
        return fault
    return output_fault(workshop.call(runnable), block)


def run_python(workshop, block):
    """It must run, and print what the page says."""
    return output_fault(workshop.call(workshop.settings["python"], "-c", block.text), block)


def configure(workshop, block):
    """The project must configure."""
    workshop.save("CMakeLists.txt", block.text)
    with tempfile.TemporaryDirectory(dir=workshop.root.parent) as build:
        return failed(workshop.call("cmake", "-G", "Ninja", "-S", workshop.root, "-B", build))


RUNNERS = {"sh": run_shell, "console": run_console, "lin": run_script, "toml": run_bus_file, "cpp": run_program,
           "python": run_python, "cmake": configure}
