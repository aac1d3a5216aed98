#!/usr/bin/env python3
"""Checks that the code's includes point one way.

Each module (a .h/.cpp pair of src/ or cli/) belongs to a layer; a module
may include modules of its own layer or of the layers below it, never of a
layer above, and no set of modules may include each other in a cycle.

    python3 scripts/check_layers.py            # the verdict and the offences
    python3 scripts/check_layers.py --counts   # also the counts, for notes

It also checks that SQL stays in the storage layer: outside src/data (and
the report database's own module, src/reports/report_db) no source file
includes SQLiteCpp or holds a SQL statement in a string literal, and outside
those and the report engine none runs a statement or holds a Query.

Exits 1 when an include points up, modules form a cycle or SQL is found
outside its home, 0 otherwise.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# The layers from the ground up; each folder is one layer (and one library).
GROUND, DATA, LOTS, REPORTS, APPLICATION, FRONT = range(6)
LAYER_NAMES = ["ground", "data", "lots", "reports", "application", "front"]
FOLDER_LAYER = {"src/ground": GROUND, "src/data": DATA, "src/lots": LOTS,
                "src/reports": REPORTS, "src/app": APPLICATION, "src/ui": FRONT, "cli": FRONT}

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)

SQL_HOMES = ("src/data/", "src/reports/report_db.")
# Character literals first, so that '"' opens no string; raw strings whole.
LITERAL = re.compile(r"'(?:[^'\\\n]|\\.)*'|R\"\((.*?)\)\"|\"((?:[^\"\\\n]|\\.)*)\"", re.S)
STATEMENT = re.compile(r'\b(SELECT\s+[\w"*(]|INSERT\s+INTO|DELETE\s+FROM|UPDATE\s+"|CREATE\s+TABLE)')
SQLITE_INCLUDE = re.compile(r'^\s*#\s*include\s+[<"]SQLiteCpp', re.M)
QUERY_HOMES = SQL_HOMES + ("src/reports/report_engine.",)
DB_CALL = re.compile(r'\b(?:Select|Execute|SelectSaved|ExecuteSaved)\(|\bQuery\s*&?\s+\w+\s*[=;({,)]')


def sql_offences():
    """Source files outside the storage layer with SQL or SQLiteCpp in them."""
    found = []
    for folder in ("src", "cli"):
        for path in sorted((ROOT / folder).rglob("*")):
            rel = path.relative_to(ROOT).as_posix()
            if path.suffix not in (".h", ".cpp") or rel.startswith(SQL_HOMES):
                continue
            text = path.read_text(encoding="utf-8")
            for match in DB_CALL.finditer("" if rel.startswith(QUERY_HOMES) else text):
                line = text.count("\n", 0, match.start()) + 1
                found.append(f"sql: {rel}:{line} runs a statement or holds a Query")
            if SQLITE_INCLUDE.search(text):
                found.append(f"sql: {rel} includes SQLiteCpp")
            for match in LITERAL.finditer(text):
                literal = match.group(1) or match.group(2) or ""
                if STATEMENT.search(literal):
                    line = text.count("\n", 0, match.start()) + 1
                    found.append(f"sql: {rel}:{line} holds a SQL statement")
    return found


def module_of(path: pathlib.Path) -> str:
    rel = path.relative_to(ROOT).with_suffix("")
    return rel.as_posix()


def layer_of(module: str) -> int:
    return FOLDER_LAYER[module.rpartition("/")[0]]


def resolve(including: pathlib.Path, target: str):
    for base in (ROOT / "src", including.parent, ROOT / "cli"):
        candidate = (base / target).resolve()
        if candidate.exists() and ROOT in candidate.parents:
            return module_of(candidate)
    return None


def graph():
    edges = {}
    for folder in FOLDER_LAYER:
        for path in sorted((ROOT / folder).glob("*.[ch]*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            module = module_of(path)
            edges.setdefault(module, set())
            for target in INCLUDE.findall(path.read_text(encoding="utf-8")):
                other = resolve(path, target)
                if other and other != module:
                    edges[module].add(other)
    for targets in list(edges.values()):
        for target in targets:
            edges.setdefault(target, set())
    return edges


def cycles(edges):
    """Strongly connected components of more than one module (Tarjan)."""
    index, low, stack, on_stack, found = {}, {}, [], set(), []
    counter = [0]

    def visit(node):
        index[node] = low[node] = counter[0]
        counter[0] += 1
        stack.append(node)
        on_stack.add(node)
        for nxt in sorted(edges[node]):
            if nxt not in index:
                visit(nxt)
                low[node] = min(low[node], low[nxt])
            elif nxt in on_stack:
                low[node] = min(low[node], index[nxt])
        if low[node] == index[node]:
            component = []
            while True:
                top = stack.pop()
                on_stack.discard(top)
                component.append(top)
                if top == node:
                    break
            if len(component) > 1:
                found.append(sorted(component))

    sys.setrecursionlimit(10000)
    for node in sorted(edges):
        if node not in index:
            visit(node)
    return found


def main():
    edges = graph()
    upward = sorted((a, b) for a, targets in edges.items() for b in targets
                    if layer_of(b) > layer_of(a))
    found = cycles(edges)
    for a, b in upward:
        print(f"up: {a} ({LAYER_NAMES[layer_of(a)]}) includes {b} ({LAYER_NAMES[layer_of(b)]})")
    for component in found:
        print(f"cycle of {len(component)} modules: " + " ".join(component))
    misplaced_sql = sql_offences()
    for offence in misplaced_sql:
        print(offence)
    if "--counts" in sys.argv:
        largest = max((len(c) for c in found), default=0)
        print(f"{len(edges)} modules, {len(upward)} upward includes, "
              f"{len(found)} cycles, largest {largest} modules")
    return 1 if upward or found or misplaced_sql else 0


if __name__ == "__main__":
    sys.exit(main())
