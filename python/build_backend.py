"""
Builds the wheel, with nothing but the standard library: the package and, in it, the shared library. FORMWORK_LIBRARY
names one that is built; else cmake builds it from the repository around this folder.
"""

import base64
import hashlib
import os
import re
import shutil
import subprocess
import sysconfig
import tempfile
import zipfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent
LIBRARY = "libformwork.so.0"
# What the library has inside of other people, by the Debian packages that it is linked from: their licences come along.
LINKED = ("libbrotli-dev", "libdeflate-dev", "libexpat1-dev", "libfontconfig-dev", "libfreetype-dev", "libfribidi-dev", "libmujs-dev",
          "libpng-dev", "libtinyxml-dev", "nettle-dev", "nlohmann-json3-dev", "zlib1g-dev")
METADATA = """\
Metadata-Version: 2.1
Name: formwork
Version: {version}
Summary: Read, fill, reset, edit and save the forms of PDF files
License: Apache-2.0
Requires-Python: >=3.9
Classifier: Operating System :: POSIX :: Linux
Classifier: Programming Language :: Python :: 3
Classifier: Typing :: Typed
Description-Content-Type: text/markdown

{description}"""
WHEEL = "Wheel-Version: 1.0\nGenerator: formwork\nRoot-Is-Purelib: false\nTag: {tag}\n"


class UnsupportedOperation(Exception):
    """What a frontend asks for is not there."""


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    with tempfile.TemporaryDirectory() as work:
        library = _library(Path(work))
        tag, name = f"py3-none-{_platform(library)}", f"formwork-{_version()}"
        files = {f"formwork/{path.name}": path.read_bytes() for path in sorted((HERE / "formwork").glob("*.py"))}
        files["formwork/py.typed"] = b""
        files[f"formwork/{LIBRARY}"] = library
    info = f"{name}.dist-info"
    files[f"{info}/METADATA"] = _metadata()
    files[f"{info}/WHEEL"] = WHEEL.format(tag=tag).encode()
    files[f"{info}/LICENSE"] = (ROOT / "LICENSE").read_bytes()
    for package, notice in _notices():
        files[f"{info}/licenses/{package}.txt"] = notice
    files[f"{info}/RECORD"] = _record(files, f"{info}/RECORD")
    wheel = f"{name}-{tag}.whl"
    with zipfile.ZipFile(Path(wheel_directory) / wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for path, data in files.items():
            entry = zipfile.ZipInfo(path)  # of 1980: equal inputs make equal wheels
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, data, zipfile.ZIP_DEFLATED)
    return wheel


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    """Without this frontends would build the library to learn what the package is called."""
    info = Path(metadata_directory) / f"formwork-{_version()}.dist-info"
    info.mkdir()
    (info / "METADATA").write_bytes(_metadata())
    return info.name


def build_sdist(sdist_directory, config_settings=None):
    raise UnsupportedOperation("there is no source distribution: the sources of the library stand around this folder")


def _library(work):
    """The bytes of the library, built or named, without what only linkers and debuggers read."""
    source = os.environ.get("FORMWORK_LIBRARY") or _built_library()
    copy = work / LIBRARY
    shutil.copyfile(source, copy)
    if strip := shutil.which("strip"):
        subprocess.run([strip, "--strip-unneeded", copy], check=True)
    return copy.read_bytes()


def _built_library():
    build = ROOT / "build" / "wheel"
    generator = ["-G", "Ninja"] if shutil.which("ninja") else []
    subprocess.run(["cmake", "-S", ROOT, "-B", build, *generator, "-DCMAKE_BUILD_TYPE=Release", "-DBUILD_TESTING=OFF",
                    "-DFORMWORK_WERROR=OFF"], check=True)
    jobs = str(os.cpu_count() or 1)
    subprocess.run(["cmake", "--build", build, "--target", "formwork_shared", "--parallel", jobs], check=True)
    return build / LIBRARY


def _metadata():
    description = (HERE / "README.md").read_text(encoding="utf-8")
    return METADATA.format(version=_version(), description=description).encode()


def _notices():
    for package in LINKED:
        notice = Path("/usr/share/doc", package, "copyright")
        if notice.is_file():
            yield package, notice.read_bytes()


def _version():
    return re.search(r"project\(formwork VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]


def _platform(library):
    """The tag of this machine, with the newest C library whose symbols the library asks for."""
    machine = sysconfig.get_platform().replace("-", "_").replace(".", "_")
    minors = [int(minor) for minor in re.findall(rb"GLIBC_2\.(\d+)", library)]
    return machine.replace("linux", f"manylinux_2_{max(minors)}") if minors else machine


def _record(files, own):
    lines = []
    for path, data in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
        lines.append(f"{path},sha256={digest},{len(data)}\n")
    return "".join([*lines, f"{own},,\n"]).encode()
