"""The shared library exports the functions that its header declares, and nothing else: check_exports.py HEADER LIBRARY."""
import re
import subprocess
import sys

header, library = sys.argv[1:]
declared = set(re.findall(r"^FW_API [^(]*?\b(fw_\w+)\(", open(header).read(), re.MULTILINE))
symbols = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
exported = {line.split()[2].split("@")[0] for line in symbols.splitlines()}
for name in sorted(declared - exported):
    print(f"{name} is declared, but not exported")
for name in sorted(exported - declared):
    print(f"{name} is exported, but not declared")
print(f"{len(declared)} functions are declared, {len(exported)} symbols exported")
sys.exit(declared != exported or len(declared) < 30)
