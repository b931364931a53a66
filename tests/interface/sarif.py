#!/usr/bin/env python3
"""The reports in SARIF that the transcripts hold are valid by the schema of the format.

    sarif.py TRANSCRIPT...

sarif-2.1.0-rtm.5.json is the schema of the committee behind the format, unchanged, as the package
@microsoft/jest-sarif carries it. What a schema can't say is asked here: a result finds its rule, and it
stands somewhere. Without python3-jsonschema nothing is looked at: exit code 77.
"""
import json
import sys
from pathlib import Path

try:
    import jsonschema
except ImportError:
    print("no python3-jsonschema: nothing validated")
    sys.exit(77)


def reports(transcript):
    """What each command of the transcript with the format as an option wrote."""
    for block in ("\n" + transcript.read_text("utf-8")).split("\n$ ")[1:]:
        command, _, output = block.partition("\n")
        if "--format sarif" in command and output.startswith("{"):
            yield command, json.JSONDecoder().raw_decode(output)[0]


def faults(report, validator):
    for error in validator.iter_errors(report):
        yield f"{'.'.join(map(str, error.absolute_path))}: {error.message}"
    for run in report["runs"]:
        rules = run["tool"]["driver"]["rules"]
        for result in run["results"]:
            if rules[result["ruleIndex"]]["id"] != result["ruleId"]:
                yield f"{result['ruleId']} is not rule {result['ruleIndex']}"
            if not result["locations"]:
                yield f"{result['ruleId']} is nowhere: {result['message']['text']}"


def main():
    schema = json.loads((Path(__file__).parent / "sarif-2.1.0-rtm.5.json").read_text("utf-8"))
    validator = jsonschema.Draft4Validator(schema, format_checker=jsonschema.FormatChecker())
    found = [report for file in sys.argv[1:] for report in reports(Path(file))]
    results = sum(len(run["results"]) for _, report in found for run in report["runs"])
    broken = [f"{command}: {fault}" for command, report in found for fault in faults(report, validator)]
    print("\n".join(broken) or f"{len(found)} reports with {results} results")
    return 1 if broken or results < 4 else 0


if __name__ == "__main__":
    sys.exit(main())
