"""The build backend of pyproject.toml: the package ``vantrel`` built with the project's own CMake.

pip calls these hooks (PEP 517) in the checkout's root. ``build_wheel`` configures the project in a build
folder of its own, builds the native module for the Python that runs the hooks, installs the CMake component
``python`` (the module and the package's files) into a staging folder and packs that as a wheel. It needs
nothing beyond the standard library, so that Debian's Python builds the package with what Debian ships:
``python3 -m venv --system-site-packages env && env/bin/pip install --no-build-isolation .``

The config setting ``build-dir`` keeps the CMake build folder there between builds
(``pip install --no-build-isolation -C build-dir=build-pip .``); without it a temporary one is used.
"""
import base64
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import sysconfig
import tarfile
import tempfile
import tomllib
import zipfile

ROOT = pathlib.Path.cwd()


def _project():
    """The [project] table of pyproject.toml, with the version of the CMake project."""
    with open(ROOT / "pyproject.toml", "rb") as file:
        project = dict(tomllib.load(file)["project"])
    cmake = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    project["version"] = re.search(r"project\(\w+ VERSION ([0-9.]+)", cmake).group(1)
    return project


def _metadata(project):
    lines = ["Metadata-Version: 2.1", f"Name: {project['name']}", f"Version: {project['version']}",
             f"Summary: {project['description']}", f"Requires-Python: {project['requires-python']}"]
    lines += [f"Requires-Dist: {requirement}" for requirement in project.get("dependencies", [])]
    return "\n".join(lines) + "\n"


def _tag():
    """The wheel's tag: the native module is for this interpreter and this platform alone."""
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    platform = sysconfig.get_platform().replace("-", "_").replace(".", "_")
    return f"{python}-{python}{sys.abiflags}-{platform}"


def _wheel_file():
    return f"Wheel-Version: 1.0\nGenerator: vantrel_build\nRoot-Is-Purelib: false\nTag: {_tag()}\n"


def _dist_info(project):
    return f"{project['name']}-{project['version']}.dist-info"


def _cmake(build, staging):
    """Configures, builds and installs the component python of the project into staging."""
    configure = ["cmake", "-S", str(ROOT), "-B", str(build), "-DCMAKE_BUILD_TYPE=Release",
                 "-DBUILD_TESTING=OFF", "-DVANTREL_BENCH=OFF", f"-DPython3_EXECUTABLE={sys.executable}",
                 "-DVANTREL_PYTHON_INSTALL_DIR=."]
    if shutil.which("ninja"):
        configure += ["-G", "Ninja"]
    jobs = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", str(os.cpu_count() or 1))
    targets = ["--target", "vantrel_python", "vantrel_kernel_family"]
    for command in (configure,
                    ["cmake", "--build", str(build), *targets, "--parallel", jobs],
                    ["cmake", "--install", str(build), "--component", "python", "--prefix", str(staging)]):
        print("+", " ".join(command), file=sys.stderr, flush=True)
        subprocess.run(command, check=True, stdout=sys.stderr)


def _record_line(arcname, data):
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return f"{arcname},sha256={digest},{len(data)}"


def _pack(staging, wheel_path, project):
    dist_info = _dist_info(project)
    records = []
    with zipfile.ZipFile(wheel_path, "w", zipfile.ZIP_DEFLATED) as wheel:
        for path in sorted(p for p in staging.rglob("*") if p.is_file()):
            arcname = path.relative_to(staging).as_posix()
            wheel.write(path, arcname)
            records.append(_record_line(arcname, path.read_bytes()))
        for name, text in (("METADATA", _metadata(project)), ("WHEEL", _wheel_file())):
            arcname = f"{dist_info}/{name}"
            wheel.writestr(arcname, text)
            records.append(_record_line(arcname, text.encode()))
        records.append(f"{dist_info}/RECORD,,")
        wheel.writestr(f"{dist_info}/RECORD", "\n".join(records) + "\n")


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_sdist(config_settings=None):
    return []


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    project = _project()
    folder = pathlib.Path(metadata_directory) / _dist_info(project)
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "METADATA").write_text(_metadata(project), encoding="utf-8")
    (folder / "WHEEL").write_text(_wheel_file(), encoding="utf-8")
    return folder.name


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    project = _project()
    name = f"{project['name']}-{project['version']}-{_tag()}.whl"
    kept = (config_settings or {}).get("build-dir")
    with tempfile.TemporaryDirectory(prefix="vantrel-wheel-") as work:
        build = pathlib.Path(kept).resolve() if kept else pathlib.Path(work) / "build"
        staging = pathlib.Path(work) / "staging"
        _cmake(build, staging)
        _pack(staging, pathlib.Path(wheel_directory) / name, project)
    return name


def _made_here(folder):
    """Folders that building and using the checkout make: build folders, virtual environments, caches."""
    return (folder.name.startswith(("build", ".")) or folder.name == "__pycache__"
            or (folder / "pyvenv.cfg").is_file())


def _source_files():
    """The checkout's files: those git tracks, or without git (an unpacked sdist) every file outside the
    folders that building and using it make."""
    try:
        listed = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, capture_output=True).stdout
        return [name for name in listed.decode().split("\0") if name and (ROOT / name).is_file()]
    except (OSError, subprocess.CalledProcessError):
        files = []
        for folder, subfolders, names in os.walk(ROOT):
            subfolders[:] = sorted(d for d in subfolders if not _made_here(pathlib.Path(folder) / d))
            files += [(pathlib.Path(folder) / name).relative_to(ROOT).as_posix() for name in sorted(names)]
        return files


def build_sdist(sdist_directory, config_settings=None):
    project = _project()
    base = f"{project['name']}-{project['version']}"
    with tarfile.open(pathlib.Path(sdist_directory) / f"{base}.tar.gz", "w:gz", format=tarfile.PAX_FORMAT) as sdist:
        for name in _source_files():
            sdist.add(ROOT / name, f"{base}/{name}", recursive=False)
        with tempfile.NamedTemporaryFile("w", encoding="utf-8", delete=False) as info:
            info.write(_metadata(project))
        sdist.add(info.name, f"{base}/PKG-INFO")
        os.unlink(info.name)
    return f"{base}.tar.gz"
