#!/usr/bin/python3
"""check_traffic.py DESCRIPTION: holds live traffic, one {"topic": ..., "payload": ...} a line, against an AsyncAPI
description. Says what does not fit it and which of its messages have not come; 1: there is any."""
import json, re, sys

import jsonschema
import yaml

with open(sys.argv[1], encoding="utf-8") as file:
    description = yaml.safe_load(file)
resolver = jsonschema.RefResolver.from_schema(description)


def resolved(node):
    return resolver.resolve(node["$ref"])[1] if "$ref" in node else node


def pattern_of(address):
    # An installation's topic has several levels.
    parts = re.split(r"\{(\w+)\}", address)
    return "".join(
        re.escape(part) if index % 2 == 0 else (".+" if part == "installation" else "[^/]+")
        for index, part in enumerate(parts)
    )


def judge_of(message):
    return jsonschema.Draft7Validator(resolved(message["payload"]), resolver=resolver)


def payload_of(text, message):
    if message.get("contentType", "application/json") == "application/json":
        return json.loads(text or "{}")
    return text


channels = [
    (name, re.compile(pattern_of(channel["address"])),
     {key: resolved(message) for key, message in channel["messages"].items()})
    for name, channel in description["channels"].items()
]
judges = {(name, key): judge_of(message) for name, _, messages in channels for key, message in messages.items()}
wanted = set(judges)
complaints = []


def complaint_of(topic, text):
    """Why it fits nothing, or None."""
    found = [(name, messages) for name, pattern, messages in channels if pattern.fullmatch(topic)]
    if len(found) != 1:
        return f"is on {len(found)} channels"
    [(name, messages)] = found
    reasons = []
    for key, message in messages.items():
        try:
            error = jsonschema.exceptions.best_match(judges[name, key].iter_errors(payload_of(text, message)))
        except ValueError as no_json:
            error = no_json
        if error is None:
            wanted.discard((name, key))
            return None
        reasons.append(f"{key}: {getattr(error, 'message', error)}")
    return f"fits none of {name}: {'; '.join(reasons)}"


for (channel, key), judge in judges.items():
    for example in resolved(description["channels"][channel]["messages"][key]).get("examples", []):
        for error in judge.iter_errors(example["payload"]):
            complaints.append(f"example of {channel}: {error.message}")
count = 0
for line in sys.stdin:
    count += 1
    packet = json.loads(line)
    complaint = complaint_of(packet["topic"], packet["payload"])
    if complaint:
        complaints.append(f"{packet['topic']} {packet['payload']}: {complaint}")
complaints += [f"no {message} has come on {channel}" for channel, message in sorted(wanted)]
print("\n".join(complaints) if complaints else f"{count} messages fit")
sys.exit(1 if complaints else 0)
