"""The package as its users get it: types, documentation, installation, example."""

import ast
import enum
import inspect
import os
import subprocess
import sys
from pathlib import Path

import pytest
import tarvix

SOURCES, BUILD = Path(os.environ["TARVIX_SOURCE_DIR"]), Path(os.environ["TARVIX_BUILD_DIR"])
STUB = ast.parse(Path(tarvix.__file__).with_suffix(".pyi").read_text())
STUB_CLASSES = {node.name: node for node in STUB.body if isinstance(node, ast.ClassDef)}
STUB_FUNCTIONS = {node.name: node for node in STUB.body if isinstance(node, ast.FunctionDef)}


def name_of(item):
    """What a statement of the stub declares."""
    match item:
        case ast.AnnAssign(target=target) | ast.Assign(targets=[target]):
            return target.id
    return item.name


def members_of(name):
    """Name, runtime object and declaration of all that the stub declares in a class."""
    return [(name_of(item), getattr(getattr(tarvix, name), name_of(item)), item) for item in STUB_CLASSES[name].body]


def parameters(arguments):
    """Names and defaults, self apart."""
    names = [argument.arg for argument in arguments.args if argument.arg != "self"]
    return names, [ast.unparse(default) for default in arguments.defaults]


def bound_parameters(function):
    """The same of a function of the module; bindings have their signature at the head of their documentation."""
    line = str(inspect.signature(function)) if inspect.isfunction(function) else function.__doc__.splitlines()[0]
    return parameters(ast.parse(f"def f{line[line.index('('):]}: ...").body[0].args)


def description_of(found):
    text = inspect.getdoc(found) or ""
    return text if isinstance(found, (type, property)) or inspect.isfunction(found) else text.partition("\n\n")[2]


def test_stub_and_module_have_the_same_names():
    assert {*STUB_FUNCTIONS, *STUB_CLASSES} == set(tarvix.__all__)
    for name in STUB_CLASSES:
        found, declared = getattr(tarvix, name), {member for member, *_ in members_of(name)}
        if issubclass(found, enum.Enum):
            assert declared == {member.name for member in found}
        else:
            assert {member for member in declared if member[0] != "_"} == {
                member for member in vars(found) if member[0] != "_"
            }


@pytest.mark.parametrize("name", STUB_CLASSES)
def test_members_are_declared_as_they_are(name):
    for member, found, item in members_of(name):
        match item:
            case ast.AnnAssign():
                assert found.fset, member
            case ast.FunctionDef(decorator_list=[ast.Name(id="property")]):
                assert isinstance(found, property) and not found.fset, member
            case ast.FunctionDef():
                assert bound_parameters(found) == parameters(item.args), member


@pytest.mark.parametrize("name", STUB_FUNCTIONS)
def test_functions_are_declared_as_they_are(name):
    assert bound_parameters(getattr(tarvix, name)) == parameters(STUB_FUNCTIONS[name].args)


@pytest.mark.parametrize("name", tarvix.__all__)
def test_everything_is_documented(name):
    found = getattr(tarvix, name)
    assert description_of(found)
    for member, member_found, _ in members_of(name) if name in STUB_CLASSES else []:
        if issubclass(found, enum.Enum):
            assert f"\n{member}: " in found.__doc__
        else:
            assert description_of(member_found), member


@pytest.fixture
def run(tmp_path):
    """Runs a program away from the build tree, whose `tarvix` Python would find in the current folder."""

    def run_it(*command, **environment):
        process = subprocess.run(command, cwd=tmp_path, env=os.environ | environment, capture_output=True, text=True)
        assert process.returncode == 0, process.stdout + process.stderr
        return process.stdout

    return run_it


def test_example_tells_who_still_answers(run):
    table = [line.split() for line in run(sys.executable, str(SOURCES / "examples/sweep.py")).splitlines()]
    answers = "12 34 5a 00 ff 55 aa 01 23 45 67 89 ab cd ef".split()
    assert table == [
        ["break", "door", "temperature", "wiper", "seat"],
        *[[width, *answers] for width in ("13", "12", "11.5", "11")],
        *[[width, *"----"] for width in ("10.5", "10", "9")],
    ]


def test_type_checker_understands_the_example(run):
    run("mypy", "--strict", str(SOURCES / "examples/sweep.py"))


def test_installed_package_can_be_imported(run, tmp_path):
    run("cmake", "--install", str(BUILD), "--component", "python", "--prefix", str(tmp_path))
    (package,) = tmp_path.glob("lib/python3*/*/tarvix")
    assert {"py.typed", "__init__.pyi"} <= {file.name for file in package.iterdir()}
    found = run(sys.executable, "-c", "import tarvix; print(tarvix.__file__)", PYTHONPATH=str(package.parent))
    assert found == f"{package}/__init__.py\n"
