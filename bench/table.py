"""Turns a run of vekjp_bench (JSON) into a Markdown table and a plot. BM_<function>_peer/<arguments> is the peer of
BM_<function>/<arguments>; the ratio is the peer's time by the function's."""
import argparse
import json
import re

BEGIN, END = "<!-- benchmark table -->", "<!-- end of benchmark table -->"


def median_times(run):
    """Nanoseconds of processor time by benchmark name, in the order of the run."""
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
    return times or whole


def rows(times):
    """(function and arguments, its time, its peer's time or None)"""
    result = []
    for name, time in times.items():
        function, _, arguments = name.partition("/")
        if function.endswith("_peer"):
            if function[:-5] + name[len(function):] not in times:
                raise SystemExit(f"{name} is the peer of nothing")
            continue
        peer = times.get(function + "_peer" + name[len(function):])
        result.append((re.sub("^BM_", "", function), arguments, time, peer))
    return result


def in_words(nanoseconds):
    for limit, name, size in ((1e3, "ns", 1), (1e6, "us", 1e3), (1e9, "ms", 1e6)):
        if nanoseconds < limit:
            return f"{nanoseconds / size:.3g} {name}"
    return f"{nanoseconds / 1e9:.3g} s"


def markdown(run, pairs_only):
    context = run["context"]
    features = f"{context['num_cpus']} processors of {context['mhz_per_cpu']} MHz"
    lines = [f"{context['date'][:10]}, x86-64, {features}.", "", "| Function | Arguments | Time | Peer | Ratio |",
             "| --- | --- | ---: | ---: | ---: |"]
    for function, arguments, time, peer in rows(median_times(run)):
        if peer is not None:
            lines.append(f"| `{function}` | {arguments} | {in_words(time)} | {in_words(peer)} | {peer / time:.2f} |")
        elif not pairs_only:
            lines.append(f"| `{function}` | {arguments} | {in_words(time)} | | |")
    return "\n".join(lines) + "\n"


def plot(run, path):
    import matplotlib

    matplotlib.use("Agg")
    from matplotlib import pyplot

    pairs = [(f"{function} {arguments}".strip(), peer / time)
             for function, arguments, time, peer in rows(median_times(run)) if peer is not None]
    figure, axes = pyplot.subplots(figsize=(10, 1 + 0.3 * max(1, len(pairs))))
    axes.barh([name for name, _ in pairs], [ratio for _, ratio in pairs], color="#4878a8")
    axes.axvline(1, color="black", linewidth=1)
    axes.invert_yaxis()
    axes.set_xlabel("times as fast as the peer")
    figure.savefig(path, bbox_inches="tight", dpi=100)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("run")
    parser.add_argument("--pairs-only", action="store_true", help="leave out functions that have no peer")
    parser.add_argument("--table", help="file for the table")
    parser.add_argument("--into", help="Markdown file whose marked section gets the table")
    parser.add_argument("--plot", help="PNG file for the plot of the ratios")
    arguments = parser.parse_args()
    with open(arguments.run, encoding="utf-8") as file:
        run = json.load(file)
    table = markdown(run, arguments.pairs_only)
    if arguments.table:
        with open(arguments.table, "w", encoding="utf-8") as file:
            file.write(table)
    if arguments.into:
        with open(arguments.into, encoding="utf-8") as file:
            before, rest = file.read().split(BEGIN)
        with open(arguments.into, "w", encoding="utf-8") as file:
            file.write(f"{before}{BEGIN}\n{table}{END}{rest.split(END)[1]}")
    if arguments.plot:
        plot(run, arguments.plot)


if __name__ == "__main__":
    main()
