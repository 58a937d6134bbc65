"""Loci simulated under island models once more: slow lists in place of counts, for comparison with the program.

Samples are lists of sizes in gene copies; a structure is a list of groups of sample indices. Every number comes from
Uniform in the order in which the program draws.
"""
import math
import struct

DEME_SIZE = 1000.0
STEPWISE, BINARY, NUCLEOTIDES, INFINITE_ALLELES = range(4)


def single(x):
    """x rounded to single precision."""
    return struct.unpack("f", struct.pack("f", x))[0]


class Uniform:
    """Knuth's subtractive generator, as a project finds it: seeded with -1, the first number spent."""
    BIG = 1000000000

    def __init__(self):
        numbers = [0] * 56
        last = numbers[55] = (161803398 - 1) % self.BIG
        value = 1
        for i in range(1, 55):
            place = 21 * i % 55
            numbers[place] = value
            value = (last - value) % self.BIG
            last = numbers[place]
        for _ in range(4):
            for i in range(1, 56):
                numbers[i] = (numbers[i] - numbers[1 + (i + 30) % 55]) % self.BIG
        self.numbers, self.next, self.behind = numbers, 0, 31
        self()

    def __call__(self):
        self.next = self.next % 55 + 1
        self.behind = self.behind % 55 + 1
        number = (self.numbers[self.next] - self.numbers[self.behind]) % self.BIG
        self.numbers[self.next] = number
        return number * 1e-9

    def below(self, n):
        return int(n * self())


def ln_gamma(x):
    series = 1.000000000190015
    for i, c in enumerate((76.18009172947146, -86.50532032941678, 24.01409824083091, -1.231739572450155,
                           0.1208650973866179e-2, -0.5395239384953e-5)):
        series += c / (x + 1 + i)
    t = x + 5.5
    return math.log(2.5066282746310007 * series / x) - (t - (x + 0.5) * math.log(t))


def poisson(uniform, mean):
    mean = single(mean)
    if mean < 12.0:
        least, product, n = single(math.exp(-mean)), 1.0, -1
        while True:
            n += 1
            product = single(product * uniform())
            if product <= least:
                return n
    root, log = single(math.sqrt(2.0 * mean)), single(math.log(mean))
    g = single(single(mean * log) - ln_gamma(mean + 1.0))
    while True:
        n = -1.0
        while n < 0.0:
            y = single(math.tan(3.141592654 * uniform()))
            n = single(single(root * y) + mean)
        n = math.floor(n)
        if uniform() <= single(0.9 * (1.0 + single(y * y)) * math.exp(single(n * log) - ln_gamma(n + 1.0) - g)):
            return int(n)


class Node:
    def __init__(self):
        self.time, self.children, self.ancestor, self.state = 0.0, [], None, 0

    def tips(self):
        return sum(child.tips() for child in self.children) if self.children else 1

    def length(self):
        return self.ancestor.time - self.time if self.ancestor else 0.0


class Urn:
    """0 .. n - 1 without replacement; the last one fills the hole."""

    def __init__(self, n):
        self.left = list(range(n))

    def draw(self, uniform):
        return take(self.left, uniform.below(len(self.left)))


def take(items, i):
    """Removes items[i]; the last one takes its place."""
    items[i], items[-1] = items[-1], items[i]
    return items.pop()


class Islands:
    """A genealogy of samples in `groups` of `demes` islands, or without groups in `demes` islands."""

    def __init__(self, uniform, copies, demes, fst, groups=None, simulated_groups=1, fct=0.0):
        self.uniform = uniform
        self.two_levels = groups is not None
        sizes = [len(group) for group in groups] if groups else [len(copies)]
        self.per_group = demes if demes >= max(sizes) else max(sizes) + 20
        self.groups = max(simulated_groups, len(sizes)) if groups else 1
        self.within, self.between = self.rates(fst, fct)
        self.lineages = [[] for _ in range(self.per_group * self.groups)]
        self.occupied = []
        self.nodes = [Node() for _ in range(2 * sum(copies) - 1)]
        self.settle(copies, sizes)
        self.time = 0.0
        while self.active() > 1:
            self.step()

    def rates(self, fst, fct):
        s, g = self.per_group, self.groups
        if not self.two_levels:
            return (s - 1.0) * (1.0 / fst - 1.0) / (2.0 * DEME_SIZE * s), 0.0
        fct = fct if fct > 0.0 else 0.001
        fsc = 1.0 - (1.0 - fst) / (1.0 - fct)
        fsc = 0.001 if fsc < 0.0 else fsc
        within = (s - 1.0) * (1.0 / fsc - 1.0) / (2.0 * s * DEME_SIZE)
        return within, (g - 1.0) * (1.0 - fct) * fsc * within / ((s - 1.0) * g * fct)

    def settle(self, copies, sizes):
        tips, sample = iter(self.nodes), 0
        groups = Urn(self.groups)
        for size in sizes:
            base = groups.draw(self.uniform) * self.per_group if self.two_levels else 0
            demes = Urn(self.per_group)
            for n in copies[sample:sample + size]:
                deme = base + demes.draw(self.uniform)
                self.lineages[deme] = [next(tips) for _ in range(n)]
                self.occupied.append(deme)
            sample += size

    def active(self):
        return sum(len(self.lineages[deme]) for deme in self.occupied)

    def coalescence_rate(self, deme):
        n = len(self.lineages[deme])
        return n * (n - 1) / 2.0

    def step(self):
        coalescence = sum(map(self.coalescence_rate, self.occupied))
        rate = coalescence + self.active() * (self.within + self.between) * DEME_SIZE
        self.time -= math.log(1.0 - self.uniform()) / rate
        if self.uniform() * rate < coalescence:
            self.coalesce(self.uniform() * coalescence)
        else:
            self.migrate()

    def coalesce(self, v):
        reached = 0.0
        for deme in self.occupied:
            reached += self.coalescence_rate(deme)
            if v <= reached and len(self.lineages[deme]) > 1:
                break
        here = self.lineages[deme]
        node = self.nodes[len(self.nodes) + 1 - self.active()]
        node.time = self.time
        node.children.append(take(here, self.uniform.below(len(here))))
        second = self.uniform.below(len(here))
        node.children.append(here[second])
        here[second] = node
        for child in node.children:
            child.ancestor = node

    def migrate(self):
        between = self.two_levels and self.within / (self.within + self.between) <= self.uniform()
        j = self.uniform.below(self.active())
        for slot, source in enumerate(self.occupied):
            if j < len(self.lineages[source]):
                break
            j -= len(self.lineages[source])
        lineage = take(self.lineages[source], j)
        target = self.target(source, between)
        if not self.lineages[source]:
            take(self.occupied, slot)
        if not self.lineages[target]:
            self.occupied.append(target)
        self.lineages[target].append(lineage)

    def other(self, n, than):
        drawn = than
        while drawn == than:
            drawn = self.uniform.below(n)
        return drawn

    def target(self, source, between):
        group, slot = divmod(source, self.per_group)
        if between:
            target = self.other(self.groups, group) * self.per_group
            self.uniform()  # for a deme that is always the first one
            return target
        return group * self.per_group + self.other(self.per_group, slot)


def mutate_site(uniform, nodes, least_derived):
    """One mutation; a branch that no share allows is drawn among all, and its right neighbour gets state 2."""
    def walk(node):
        yield node
        for child in node.children:
            yield from walk(child)

    root, new = nodes[-1], 0
    n = root.tips()

    def branch(least):
        fit = [node for node in walk(root) if node.tips() / n >= least]
        total = sum(node.length() for node in fit)
        u, share = uniform(), 0.0
        for node in fit:
            share += node.length() / total if total > 0.0 else math.nan
            if share >= u:
                return node
        return None

    mutated = branch(least_derived)
    if mutated is None:
        mutated, new = branch(0.0), 2

    def mark(node, state):
        node.state = state
        for child in node.children:
            mark(child, 1 if child is mutated else state)
            state = new if child is mutated else state

    mark(root, 0)
    return 1


def mutate_alleles(uniform, nodes, stepwise, rate):
    """Mutations at `rate` on every branch, the left subtree first. Returns their number."""
    placed = 0

    def walk(node, mutations):
        nonlocal placed
        node.state = node.ancestor.state if node.ancestor else 0
        for _ in range(mutations):
            uniform()  # the only site
            placed += 1
            node.state = node.state + (-1 if uniform() < 0.5 else 1) if stepwise else placed
        for child in node.children:
            walk(child, poisson(uniform, child.length() * rate))

    walk(nodes[-1], 0)
    return placed


def theta_of(heterozygosity, kind):
    if kind == STEPWISE:
        return 0.5 * (1.0 / (1.0 - heterozygosity) ** 2 - 1.0)
    if kind == INFINITE_ALLELES:
        return 1.0 / (1.0 - heterozygosity) - 1.0
    return heterozygosity / (1.0 - 2.0 * heterozygosity)


def simulated_states(uniform, copies, kind, bounds, demes, fst, groups=None, simulated_groups=1, fct=0.0, least=0.0):
    """One locus: target heterozygosity, states by sample, number of mutations."""
    low, high = bounds
    single_sites = kind in (BINARY, NUCLEOTIDES)
    target = low + uniform() * ((min(high, 0.5) if single_sites else high) - low)
    if single_sites and target >= 0.5:
        target = 0.45 + 0.05 * uniform()
    theta = theta_of(target, kind) / demes / (max(simulated_groups, len(groups)) if groups else 1)
    limit = min(1.0, 1.0 / fst - 1.0) if fst > 0.0 else 0.0
    theta = 0.95 * limit if limit < theta else theta
    nodes = Islands(uniform, copies, demes, fst, groups, simulated_groups, fct).nodes
    if single_sites:
        mutations = mutate_site(uniform, nodes, least)
    else:
        mutations = mutate_alleles(uniform, nodes, kind == STEPWISE, theta / 2.0)
    tips = iter(nodes)
    return target, [[next(tips).state for _ in range(n)] for n in copies], mutations
