"""The proofs: what each shows, how it is started, and which promises of docs/promises.md it stands behind."""

import dataclasses

BOTH = ("64", "32")
NATIVE = ("",)  # no width: the portable code, or all widths in one run


@dataclasses.dataclass(frozen=True)
class Proof:
    """{bits} in a command stands for the width. `quick` takes the place of `command` for a short try."""

    name: str
    what: str
    promises: tuple
    command: tuple
    quick: tuple
    widths: tuple
    minutes: int  # about, for one width, on two processors

    def tool(self):
        return self.command[0]

    def commands(self, bits, quick=False):
        return [word.format(bits=bits) for word in (self.quick if quick else self.command)]


def proof(name, what, promises, command, quick, widths, minutes):
    """The table's rows have their commands as one text; `quick` is that of the short form."""
    return Proof(name, what, promises, tuple(command.split()), tuple(quick.split()), widths, minutes)


PROOFS = (
    proof("hangs", "every blocking member, every way to hang", (1, 2, 3),
          "tools/try-to-hang --bits {bits}",
          "tools/try-to-hang --bits {bits} --rows GPIB", BOTH, 15),
    proof("faults", "every call of the system, every allocation made to fail", (3, 4),
          "tools/sweep-faults --bits {bits}",
          "tools/sweep-faults --bits {bits} --most 1 creation", BOTH, 60),
    proof("seams", "every call of every seam, every allocation made to fail, natively", (4,),
          "tools/sweep-seams",
          "tools/sweep-seams *CKespIEEE*", NATIVE, 4),
    proof("fuzzers", "whole conversations and every parser, driven by bytes", (2, 4),
          "tools/fuzz 60",
          "tools/fuzz 1", NATIVE, 60),
    proof("arguments", "random arguments to every member", (4,),
          "tools/random-arguments --bits {bits}",
          "tools/random-arguments --bits {bits} --calls 2000", BOTH, 10),
    proof("races", "what threads share, under ThreadSanitizer", (4,),
          "tools/stress-threads native",
          "tools/stress-threads --rounds 5 native", NATIVE, 5),
    proof("threads", "apartments, threads and processes at full load", (3, 4),
          "tools/stress-threads --bits {bits} wine",
          "tools/stress-threads --bits {bits} --rounds 10 wine", BOTH, 20),
    proof("soak", "the same for very long", (3, 4),
          "tools/soak --bits {bits}",
          "tools/soak --bits {bits} --scale 0.001", BOTH, 20),
    proof("regions", "other languages and regional settings", (4,),
          "tools/regions --bits {bits}",
          "tools/regions --bits {bits} tr_TR.UTF-8", BOTH, 5),
    proof("interface", "identifiers, names, places and values", (5,),
          "tools/public-interface --bits {bits}",
          "tools/public-interface --bits {bits}", BOTH, 1),
    proof("clients", "client runtimes in all languages", (6,),
          "tools/lib/proof/client-tests",
          "tools/lib/proof/client-tests pascal", NATIVE, 10),
    proof("mutations", "small faults put into the library on purpose", (),
          "tools/mutations --count 1000",
          "tools/mutations --count 10 --wine-minutes 0", NATIVE, 300),
)


def named(names):
    """Those proofs, all where none is named. Raises ValueError for a name that is none."""
    known = {proof.name: proof for proof in PROOFS}
    for name in names:
        if name not in known:
            raise ValueError(f"there is no proof {name}; --list names them")
    return [known[name] for name in dict.fromkeys(names)] if names else list(PROOFS)
