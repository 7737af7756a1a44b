#!/usr/bin/env python3
"""client.py read [ELEMENT] | write ELEMENT FUNCTION VALUE | follow; see README.md for the rest."""
import json, os, queue, signal, sys
try:
    import paho.mqtt.client as mqtt
except ImportError:
    sys.exit("client.py: there is no paho; Debian has it in python3-paho-mqtt, pip in paho-mqtt")
verb, element, function, value = (sys.argv[1:] + [None] * 4)[:4]
if len(sys.argv) - 1 not in {"read": (1, 2), "write": (4,), "follow": (1,)}.get(verb, ()): sys.exit(__doc__)
root = "local/api/v1/" + os.environ["TORLAN_USER"]
own, paths = f"{root}/py{os.getpid()}", "elements/objects_list"
home, since = {}, []  # element: {function: value}; states since the question
arrived = queue.Queue()  # what comes in a thread of paho's
def on_connect(client, _data, _flags, reason, _properties):
    if reason != 0: arrived.put(("refused", str(reason)))
    client.subscribe([(f"{root}/status/{paths}/+", 1), (f"{own}/status/#", 1)])
def on_subscribe(client, *_):  # the first time, and after every gap
    arrived.put(("asked", ""))
    client.publish(f"{own}/request/get/{paths}", "{}", qos=1)
def merge(says):
    for id, body in says.items():
        for name, state in body.get("functions", {}).items():
            if verb == "follow" and home.get(id, {}).get(name) != state["value"]:
                print(id, name, state["value"], flush=True)
            home.setdefault(id, {})[name] = state["value"]
version = [mqtt.CallbackAPIVersion.VERSION2] if hasattr(mqtt, "CallbackAPIVersion") else []  # paho 2
client = mqtt.Client(*version, protocol=mqtt.MQTTv5)
client.username_pw_set(os.environ["TORLAN_USER"], os.environ["TORLAN_PASSWORD"])
client.on_connect, client.on_subscribe = on_connect, on_subscribe
client.on_message = lambda _client, _data, message: arrived.put((message.topic, message.payload))
client.connect_async(os.environ.get("TORLAN_HOST", "127.0.0.1"), int(os.environ.get("TORLAN_PORT", 1883)))
client.loop_start()
late = f"client.py: no answer, or {element} {function} is not {value} in time"
signal.signal(signal.SIGALRM, lambda *_: sys.exit(late))
signal.alarm(int(os.environ.get("TORLAN_WAIT", 10)) if verb != "follow" else 0)
passed_on = False  # "202": no promise that the value comes
while not (passed_on and home.get(element, {}).get(function) == value):
    topic, text = arrived.get()
    packet = json.loads(text or "{}") if topic != "refused" else sys.exit(f"client.py: {text}")
    if topic == "asked": since = []
    elif topic == f"{own}/status/get/{paths}":
        for id, state in since or []:  # they are newer than the answer
            packet["data"].setdefault(id, {"functions": {}})["functions"].update(state["functions"]) if state else packet["data"].pop(id, None)
        home, since = {id: home[id] for id in home if id in packet["data"]}, None
        merge(packet["data"])
        if verb == "read":
            known = home if element is None else home.get(element)
            sys.exit(print(json.dumps(known)) if known is not None else f"client.py: {element} cannot be read")
        if verb == "write":
            verb, payload = "written", json.dumps({"data": {"functions": {function: json.loads(value)}}})
            client.publish(f"{own}/request/set/{paths}/{element}", payload, qos=1)
    elif topic == f"{own}/status/set/{paths}/{element}":
        if not (passed_on := packet.get("data", {}).get("functions", {}).get(function) == "202"): sys.exit(f"client.py: refused: {text.decode()}")
    else:  # a state; without a text the element is gone
        id, state = topic.split("/")[-1], packet.get("data")
        since is None or since.append((id, state))
        merge({id: state}) if state else home.pop(id, None)
print(element, function, value)
