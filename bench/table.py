"""Turns a run of vekjp_bench (JSON) into a Markdown table and a plot. pairs.txt, beside this file, tells which
benchmark is whose peer; the ratio is the peer's time by the function's, from the same run and for the same
arguments."""
import argparse
import json
import pathlib
import re
import sys

BEGIN, END = "<!-- benchmark table -->", "<!-- end of benchmark table -->"


def median_times(run):
    """Nanoseconds by benchmark name, in the order of the names: a run mixes its benchmarks."""
    unit = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    times, whole = {}, {}
    for entry in run["benchmarks"]:
        if entry.get("error_occurred"):
            raise SystemExit(f"{entry['name']}: {entry['error_message']}")
        clock = "real_time" if "real_time" in entry["name"] else "cpu_time"
        value = entry[clock] * unit[entry["time_unit"]]
        if entry["run_type"] != "aggregate":
            whole.setdefault(entry["run_name"], value)
        elif entry["aggregate_name"] == "median":
            times[entry["run_name"]] = value
    times = times or whole
    return {name: times[name] for name in sorted(times, key=in_order)}


def in_order(name):
    """Sorts numbers in a name as numbers."""
    return [(int(part), "") if part.isdigit() else (0, part) for part in re.split(r"(\d+)", name)]


def read_pairs():
    """by function, its peers: peer, promised ratio, and how the arguments begin for which it is promised"""
    pairs = {}
    for line in (pathlib.Path(__file__).parent / "pairs.txt").read_text(encoding="utf-8").splitlines():
        words = line.split("#")[0].split()
        if words:
            ratio = words[2] if len(words) > 2 else None
            where = words[3] if len(words) > 3 else ""
            pairs.setdefault(words[0], []).append((words[1], ratio, where))
    return pairs


def time_of_peer(times, peer, arguments):
    """The peer's time for the same arguments, or for as many of the first of them as it has; None if it did not run."""
    parts = [f"BM_{peer}"] + arguments.split("/")
    for count in range(len(parts), 0, -1):
        if "/".join(parts[:count]) in times:
            return times["/".join(parts[:count])]
    return None


def rows(times):
    """function, arguments, time, peer, peer's time, promised ratio; the last three are None where there is no peer"""
    pairs = read_pairs()
    peers = {peer for several in pairs.values() for peer, *_ in several}
    result = []
    for name, time in times.items():
        function, _, arguments = name.removeprefix("BM_").partition("/")
        if function.startswith("peer_"):
            if function not in peers:
                print(f"{function} is nobody's peer in pairs.txt", file=sys.stderr)
            continue
        beside = [(function, arguments, time, peer, time_of_peer(times, peer, arguments),
                   ratio if ratio and arguments.startswith(where) else None)
                  for peer, ratio, where in pairs.get(function, [])]
        result += [row for row in beside if row[4]] or [(function, arguments, time, None, None, None)]
    return result


def in_words(nanoseconds):
    for limit, name, size in ((1e3, "ns", 1), (1e6, "us", 1e3), (1e9, "ms", 1e6)):
        if nanoseconds < limit:
            return f"{nanoseconds / size:.3g} {name}"
    return f"{nanoseconds / 1e9:.3g} s"


def machine_of(run):
    context = run["context"]
    return (f"{context['date'][:10]}, x86-64, {context['num_cpus']} processors of {context['mhz_per_cpu']} MHz.", "")


def markdown(run):
    lines = [*machine_of(run), "|Function|Arguments|Time|Peer|Its time|Ratio|Promised|",
             "|---|---|---:|---|---:|---:|---:|"]
    for function, arguments, time, peer, peer_time, promise in rows(median_times(run)):
        if peer:
            lines.append(f"|`{function}`|{arguments}|{in_words(time)}|{peer.removeprefix('peer_')}|"
                         f"{in_words(peer_time)}|{peer_time / time:.2f}|{promise or ''}|")
        else:
            lines.append(f"|`{function}`|{arguments}|{in_words(time)}|||||")
    return "\n".join(lines) + "\n"


def shortened(names, width):
    """As many names as fit, at least the first, and how many more there are."""
    for count in range(len(names), 0, -1):
        more = f" and {len(names) - count} more" if count < len(names) else ""
        text = ", ".join(f"`{name}`" for name in names[:count]) + more
        if len(text) <= width:
            break
    return text


def promises(run):
    """A short table: a line for each peer, with the functions beside it and the ratios over all arguments."""
    groups = {}
    for function, _, time, peer, peer_time, promise in rows(median_times(run)):
        if promise:
            functions, ratios = groups.setdefault((peer, promise), ({}, []))
            functions[function] = True
            ratios.append(peer_time / time)
    lines = [*machine_of(run), "|Functions|Peer|Ratio|Promised|", "|---|---|---:|---:|"]
    for (peer, promise), (functions, ratios) in groups.items():
        low, high = f"{min(ratios):.2f}", f"{max(ratios):.2f}"
        rest = f"|{peer.removeprefix('peer_')}|{low if low == high else f'{low} to {high}'}|{promise}|"
        lines.append(f"|{shortened(list(functions), 119 - len(rest))}{rest}")
    return "\n".join(lines) + "\n"


def plot(run, path):
    import matplotlib

    matplotlib.use("Agg")
    from matplotlib import pyplot

    pairs = [(f"{function} {arguments} : {peer.removeprefix('peer_')}", peer_time / time)
             for function, arguments, time, peer, peer_time, _ in rows(median_times(run)) if peer]
    figure, axes = pyplot.subplots(figsize=(10, 1 + 0.3 * max(1, len(pairs))))
    axes.barh([name for name, _ in pairs], [ratio for _, ratio in pairs], color="#4878a8")
    axes.axvline(1, color="black", linewidth=1)
    axes.invert_yaxis()
    axes.set_xlabel("times as fast as the peer")
    figure.savefig(path, bbox_inches="tight", dpi=100)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("run")
    parser.add_argument("--table", help="file for the table of all benchmarks")
    parser.add_argument("--into", help="Markdown file whose marked section gets the ratios that are promised")
    parser.add_argument("--plot", help="PNG file for the plot of the ratios")
    arguments = parser.parse_args()
    with open(arguments.run, encoding="utf-8") as file:
        run = json.load(file)
    if arguments.table:
        with open(arguments.table, "w", encoding="utf-8") as file:
            file.write(markdown(run))
    if arguments.into:
        with open(arguments.into, encoding="utf-8") as file:
            before, rest = file.read().split(BEGIN)
        with open(arguments.into, "w", encoding="utf-8") as file:
            file.write(f"{before}{BEGIN}\n{promises(run)}{END}{rest.split(END)[1]}")
    if arguments.plot:
        plot(run, arguments.plot)


if __name__ == "__main__":
    main()
