#!/usr/bin/env python3
"""The mutations that scripts/mutate.sh runs, and their text edits.

  mutate.py list  [--rev REV] [--seed N] [--limit N] [--only ID,...]
        prints "ID<TAB>the mutated line", one mutant a line, in a fixed order
  mutate.py apply ROOT ID
        edits the file under ROOT in place (restore it with git checkout)

Candidates come from a line-by-line scan of the core's .cpp files (headers
are left alone: one change there rebuilds most of the tree). Comments,
string literals and preprocessor lines are blanked before matching, so a
match never lands in text the compiler does not see. From all candidates a
seeded, fixed sample is drawn per kind; an ID is file:line:kind, and a line
gives at most one mutant of each kind, so the ID alone finds the edit again.
"""

import argparse
import random
import re
import subprocess
import sys
from pathlib import Path

FOLDERS = ("src/ground", "src/data", "src/lots", "src/reports", "src/app")
DEFAULT_SEED = 20261124
DEFAULT_COUNT = 200

# How many of each kind the sample draws (rounding takes every candidate).
QUOTA = {
    "rel": 45,
    "arith": 25,
    "if-true": 20,
    "if-false": 20,
    "loop-bound": 12,
    "loop-start": 8,
    "swap-args": 20,
    "const": 25,
    "round-mode": 99,
    "round-digits": 15,
}

REL = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
ARITH = {"+": "-", "-": "+", "*": "/", "/": "*"}
ROUNDERS = {"std::round": "std::trunc", "std::trunc": "std::round", "std::nearbyint": "std::floor",
            "std::floor": "std::ceil", "std::ceil": "std::floor", "std::llround": "std::lround"}
ROUNDING_FILES = ("currency.cpp", "value_helpers.cpp", "number_text.cpp")


def blank_code(lines):
    """The lines with comments, literals and directives replaced by blanks of the same length."""
    out, in_block, raw_end = [], False, None
    for line in lines:
        chars, i, n = list(line), 0, len(line)
        if raw_end is None and not in_block and line.lstrip().startswith("#"):
            out.append(" " * n)
            continue
        while i < n:
            if raw_end is not None:
                j = line.find(raw_end, i)
                stop = n if j < 0 else j + len(raw_end)
                chars[i:stop] = " " * (stop - i)
                i, raw_end = stop, (raw_end if j < 0 else None)
            elif in_block:
                j = line.find("*/", i)
                stop = n if j < 0 else j + 2
                chars[i:stop] = " " * (stop - i)
                i, in_block = stop, j < 0
            elif line.startswith("//", i):
                chars[i:n] = " " * (n - i)
                i = n
            elif line.startswith("/*", i):
                in_block = True
            elif line.startswith('R"', i):
                j = line.find("(", i)
                raw_end = ")" + line[i + 2:j] + '"'
                chars[i:j + 1] = " " * (j + 1 - i)
                i = j + 1
            elif line[i] in "\"'":
                quote, j = line[i], i + 1
                while j < n and line[j] != quote:
                    j += 2 if line[j] == "\\" else 1
                stop = min(j + 1, n)
                chars[i:stop] = " " * (stop - i)
                i = stop
            else:
                i += 1
        out.append("".join(chars))
    return out


def closing_paren(code, start):
    """Index of the parenthesis closing the one at `start`, or -1 on this line."""
    depth = 0
    for k in range(start, len(code)):
        depth += {"(": 1, ")": -1}.get(code[k], 0)
        if depth == 0:
            return k
    return -1


def candidates(line, code, name):
    """(kind, start, end, replacement) for each mutable site of one line."""
    found = []
    for m in re.finditer(r"(?<=\S) (<=|>=|==|!=|<|>) (?=\S)", code):
        found.append(("rel", m.start(1), m.end(1), REL[m.group(1)]))
    # Spaces on both sides tell a binary operator from a pointer, a sign or
    # a template; text concatenation would not compile, so such lines are skipped.
    if '"' not in line and "std::string" not in line:
        for m in re.finditer(r"(?<=[\w)\]]) ([-+*/]) (?=[\w(])", code):
            found.append(("arith", m.start(1), m.end(1), ARITH[m.group(1)]))
    for m in re.finditer(r"\bif \(", code):
        open_at = m.end() - 1
        close_at = closing_paren(code, open_at)
        # A condition that declares a variable (init-statement or assignment) stays as it is.
        if close_at > 0 and not re.search(r";|[^=!<>]=[^=]", code[open_at:close_at]):
            cond = line[open_at + 1:close_at]
            found.append(("if-true", open_at + 1, close_at, f"({cond}) || true"))
            found.append(("if-false", open_at + 1, close_at, f"({cond}) && false"))
    m = re.search(r"\bfor \(([^;]*);([^;]*);", code)
    if m:
        init = re.search(r"= 0\b", code[m.start(1):m.end(1)])
        if init:
            at = m.start(1) + init.start() + 2
            found.append(("loop-start", at, at + 1, "1"))
        bound = re.search(r" (<|<=|!=) ([^;]+?)\s*$", code[m.start(2):m.end(2)])
        if bound:
            at = m.start(2) + bound.end(2)
            found.append(("loop-bound", at, at, " - 1"))
    for m in re.finditer(r"(?<!std::)\b\w+\(([\w.>\-]+), ([\w.>\-]+)\)", code):
        a, b = m.group(1), m.group(2)
        # The application state and a form never trade places and still
        # compile; std::min and std::max would not notice.
        plain = not {a, b} & {"app", "form"} and not a.isdigit() and not b.isdigit()
        if plain and a != b and m.group(0).split("(")[0] not in ("if", "while", "for", "switch", "return"):
            found.append(("swap-args", m.start(1), m.end(2), f"{b}, {a}"))
    for m in re.finditer(r"(?<![\w.])(\d+)(?![\w.'])", code):
        if not re.search(r"\[\s*$", code[:m.start()]):
            found.append(("const", m.start(1), m.end(1), str(int(m.group(1)) + 1)))
    for old, new in ROUNDERS.items():
        for m in re.finditer(re.escape(old) + r"\(", code):
            found.append(("round-mode", m.start(), m.start() + len(old), new))
    if name in ROUNDING_FILES:
        # Half to even becomes half away from zero: the tie no longer asks for an odd quotient.
        for m in re.finditer(r"\w+ % 2 != 0", code):
            found.append(("round-mode", m.start(), m.end(), "true"))
    for m in re.finditer(r"\.RoundedToCent\(\)", code):
        found.append(("round-mode", m.start(), m.end(), ""))
    for m in re.finditer(r"(?<!double )\bRoundDouble\(", code):
        close_at = closing_paren(code, m.end() - 1)
        if close_at > 0:
            found.append(("round-digits", close_at, close_at, " + 1"))
    for m in re.finditer(r"\bRoundShares\(", code):
        close_at = closing_paren(code, m.end() - 1)
        if close_at > 0:
            inner = line[m.end():close_at]
            found.append(("round-digits", m.start(), close_at + 1, f"RoundDouble({inner}, kShareDecimals - 1)"))
    return found


def scan(path, text):
    """{id: (line number, start, end, replacement)}; the first site of each kind on a line."""
    lines = text.split("\n")
    sites = {}
    for number, (line, code) in enumerate(zip(lines, blank_code(lines)), start=1):
        for kind, start, end, new in candidates(line, code, Path(path).name):
            sites.setdefault(f"{path}:{number}:{kind}", (number, start, end, new))
    return sites


def git(rev, *args):
    return subprocess.run(["git", *args], check=True, capture_output=True, text=True).stdout


def all_sites(rev):
    sites = {}
    for path in git(rev, "ls-tree", "-r", "--name-only", rev, "--", *FOLDERS).split():
        if path.endswith(".cpp"):
            sites.update(scan(path, git(rev, "show", f"{rev}:{path}")))
    return sites


def sample(sites, seed, count):
    """A seeded draw per kind, scaled to `count`, then shuffled so that any
    first N of the list are spread over the tree and the kinds."""
    rng = random.Random(seed)
    scale = count / DEFAULT_COUNT
    chosen = []
    for kind, quota in QUOTA.items():
        ids = sorted(i for i in sites if i.rsplit(":", 1)[1] == kind)
        chosen += rng.sample(ids, min(len(ids), max(1, round(quota * scale))))
    rng.shuffle(chosen)
    return chosen


def mutated_line(site, line):
    number, start, end, new = site
    return (line[:start] + new + line[end:]).strip()


def cmd_list(args):
    rev = git(None, "rev-parse", args.rev).strip()
    sites = all_sites(rev)
    ids = sample(sites, args.seed, args.count)
    if args.only:
        wanted = args.only.split(",")
        missing = [i for i in wanted if i not in sites]
        if missing:
            sys.exit("no such mutant at " + rev[:10] + ": " + ", ".join(missing))
        ids = wanted
    if args.limit:
        ids = ids[:args.limit]
    files = {}
    for i in ids:
        path = i.split(":")[0]
        if path not in files:
            files[path] = git(rev, "show", f"{rev}:{path}").split("\n")
        print(f"{i}\t{mutated_line(sites[i], files[path][sites[i][0] - 1])}")


def cmd_apply(args):
    path = args.id.split(":")[0]
    file = Path(args.root) / path
    text = file.read_text()
    site = scan(path, text).get(args.id)
    if site is None:
        sys.exit(f"no such mutant: {args.id}")
    number, start, end, new = site
    lines = text.split("\n")
    line = lines[number - 1]
    lines[number - 1] = line[:start] + new + line[end:]
    file.write_text("\n".join(lines))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    sub = parser.add_subparsers(dest="command", required=True)
    lister = sub.add_parser("list")
    lister.add_argument("--rev", default="HEAD")
    lister.add_argument("--seed", type=int, default=DEFAULT_SEED)
    lister.add_argument("--count", type=int, default=DEFAULT_COUNT)
    lister.add_argument("--limit", type=int, default=0)
    lister.add_argument("--only", default="")
    lister.set_defaults(run=cmd_list)
    applier = sub.add_parser("apply")
    applier.add_argument("root")
    applier.add_argument("id")
    applier.set_defaults(run=cmd_apply)
    args = parser.parse_args()
    args.run(args)


if __name__ == "__main__":
    main()
