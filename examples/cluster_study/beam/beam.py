#!/usr/bin/env python3
"""Computes how far the free end of a steel cantilever bends under a load.

beam.py --length MM --width MM --height MM --load N [--refinement R]

Writes the mesh and the load to beam.inp in the current folder, runs the finite-element program
`ccx` on it, and writes result.txt, with one "name=value" on a line:
- deflection: of the middle of the end face, in the direction of the load, in mm;
- theory: the same from beam theory, with the correction for shear, in mm;
- deviation: (deflection - theory) / theory;
- nodes: the number of nodes of the mesh.
Ends with 0, or with 1 and a message when ccx has failed; result.txt does not exist then.
"""
import argparse
import math
import os
import pathlib
import subprocess
import sys

YOUNG = 210000.0  # MPa
POISSON = 0.3

INPUT = pathlib.Path("beam.inp")
OUTPUT = pathlib.Path("beam.dat")
RESULT = pathlib.Path("result.txt")


def positive(text):
    value = float(text)
    if not 0 < value < math.inf:
        raise ValueError
    return value


def positive_integer(text):
    value = int(text)
    if value < 1:
        raise ValueError
    return value


def options():
    parser = argparse.ArgumentParser(description="Deflection of a cantilever with one load at its end.")
    parser.add_argument("--length", type=positive, required=True, metavar="MM")
    parser.add_argument("--width", type=positive, required=True, metavar="MM")
    parser.add_argument("--height", type=positive, required=True, metavar="MM")
    parser.add_argument("--load", type=positive, required=True, metavar="N")
    parser.add_argument("--refinement", type=positive_integer, default=1, metavar="R",
                        help="R times as many elements in each direction (default: 1)")
    return parser.parse_args()


class Mesh:
    """A box of solid elements with 20 nodes each: the corners and the middles of the edges.

    A node has three indices (along the length, width and height), counted in half elements. At most
    one of the indices of a node is odd.
    """

    def __init__(self, beam):
        self.counts = (10 * beam.refinement, 2 * beam.refinement, 2 * beam.refinement)
        self.steps = [size / (2 * count) for size, count
                      in zip((beam.length, beam.width, beam.height), self.counts)]
        self.numbers = {}
        for i in range(2 * self.counts[0] + 1):
            for j in range(2 * self.counts[1] + 1):
                for k in range(2 * self.counts[2] + 1):
                    if i % 2 + j % 2 + k % 2 <= 1:
                        self.numbers[i, j, k] = len(self.numbers) + 1

    def position(self, node):
        return [index * step for index, step in zip(node, self.steps)]

    def elements(self):
        """The nodes of each element, in the order that ccx expects."""
        corners = [(0, 0), (2, 0), (2, 2), (0, 2)]
        middles = [(1, 0), (2, 1), (1, 2), (0, 1)]
        order = ([(i, j, 0) for i, j in corners] + [(i, j, 2) for i, j in corners]
                 + [(i, j, 0) for i, j in middles] + [(i, j, 2) for i, j in middles]
                 + [(i, j, 1) for i, j in corners])
        for x in range(0, 2 * self.counts[0], 2):
            for y in range(0, 2 * self.counts[1], 2):
                for z in range(0, 2 * self.counts[2], 2):
                    yield [self.numbers[x + i, y + j, z + k] for i, j, k in order]

    def clamped(self):
        return [number for (i, _, _), number in self.numbers.items() if i == 0]

    def middle_of_end(self):
        return self.numbers[2 * self.counts[0], self.counts[1], self.counts[2]]

    def end_loads(self, load):
        """The nodal loads that equal a load spread evenly over the end face."""
        loads = {}
        share = load / (self.counts[1] * self.counts[2])
        for y in range(0, 2 * self.counts[1], 2):
            for z in range(0, 2 * self.counts[2], 2):
                for j, k in ((0, 0), (0, 2), (2, 0), (2, 2), (0, 1), (1, 0), (1, 2), (2, 1)):
                    number = self.numbers[2 * self.counts[0], y + j, z + k]
                    part = -share / 12 if j != 1 and k != 1 else share / 3
                    loads[number] = loads.get(number, 0.0) + part
        return loads


def lines_of(numbers, per_line=8):
    for start in range(0, len(numbers), per_line):
        yield ", ".join(map(str, numbers[start:start + per_line])) + ","


def input_lines(beam, mesh):
    yield "*NODE, NSET=ALL"
    for node, number in mesh.numbers.items():
        yield ", ".join([str(number), *(f"{value:.9g}" for value in mesh.position(node))])
    yield "*ELEMENT, TYPE=C3D20R, ELSET=BEAM"
    for index, nodes in enumerate(mesh.elements(), 1):
        yield from lines_of([index, *nodes[:10]], 11)
        yield ", ".join(map(str, nodes[10:]))
    yield "*NSET, NSET=CLAMPED"
    yield from lines_of(mesh.clamped())
    yield "*NSET, NSET=END"
    yield str(mesh.middle_of_end())
    yield "*MATERIAL, NAME=STEEL"
    yield "*ELASTIC"
    yield f"{YOUNG}, {POISSON}"
    yield "*SOLID SECTION, ELSET=BEAM, MATERIAL=STEEL"
    yield "*BOUNDARY"
    yield "CLAMPED, 1, 3"
    yield "*STEP"
    yield "*STATIC"
    yield "*CLOAD"
    for number, value in mesh.end_loads(beam.load).items():
        yield f"{number}, 3, {-value:.9g}"
    yield "*NODE PRINT, NSET=END"
    yield "U"
    yield "*END STEP"


def run_ccx():
    """Runs ccx with one thread: the study runs as many cases as there are cores."""
    environment = {**os.environ, "OMP_NUM_THREADS": "1"}
    ended = subprocess.run(["ccx", "-i", INPUT.stem], env=environment, check=False)
    if ended.returncode != 0:
        raise RuntimeError(f"ccx has ended with {ended.returncode}")


def printed_deflection():
    """The downward displacement of the last line of beam.dat: "NODE X Y Z"."""
    fields = OUTPUT.read_text(encoding="ascii").split()[-4:]
    deflection = -float(fields[-1])
    if len(fields) != 4 or not 0 < deflection < math.inf:
        raise RuntimeError(f"{OUTPUT} has no deflection")
    return deflection


def theory(beam):
    """Euler and Bernoulli's bending plus Timoshenko's shear, with the factor for a rectangle."""
    area = beam.width * beam.height
    inertia = beam.width * beam.height ** 3 / 12
    shear_modulus = YOUNG / (2 * (1 + POISSON))
    bending = beam.load * beam.length ** 3 / (3 * YOUNG * inertia)
    shear = beam.load * beam.length / (5 / 6 * shear_modulus * area)
    return bending + shear


def main():
    beam = options()
    for path in (RESULT, OUTPUT):
        path.unlink(missing_ok=True)
    mesh = Mesh(beam)
    INPUT.write_text("\n".join(input_lines(beam, mesh)) + "\n", encoding="ascii")
    run_ccx()
    deflection = printed_deflection()
    expected = theory(beam)
    RESULT.write_text(f"deflection={deflection:.6g}\n"
                      f"theory={expected:.6g}\n"
                      f"deviation={(deflection - expected) / expected:.6f}\n"
                      f"nodes={len(mesh.numbers)}\n", encoding="ascii")


if __name__ == "__main__":
    try:
        main()
    except (OSError, RuntimeError, ValueError) as error:
        sys.exit(f"beam.py: {error}")
