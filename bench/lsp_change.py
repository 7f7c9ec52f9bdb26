#!/usr/bin/env python3
"""The language server's cost of a one-file change: CPU time of the server
from a didChange to the last publishDiagnostics it sends for that change
(a request sent right after the change is answered once they are all out).

    bench/lsp_change.py LCDCFG ROOT [RUNS] [FILE...]

FILE is relative to ROOT (default: one file of each kind). Each run edits the
file's text (a trailing blank, alternately present or not) without saving.
Prints, per file, the median and the range of the server's user+system CPU
time in milliseconds.
"""
import json, os, queue, statistics, subprocess, sys, threading

DEFAULT = ["device/29974/29974_slot.xml", "device/29974/29974_screen_splice.xml",
           "subcard/c0_2101_hdmi20_4in.xml", "connector/c0_connector_dvi.xml",
           "connector/resolutions.xml", "menu/menuitems.xml", "ui/checklist.xml",
           "ui/printkeynoconfig.xml", "func/hdr/lcdhdrinputconfig.xml"]
TICK = os.sysconf("SC_CLK_TCK")


def cpu_ms(pid):
    with open(f"/proc/{pid}/stat") as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) * 1000.0 / TICK


def main():
    tool, root = sys.argv[1], os.path.abspath(sys.argv[2])
    runs = int(sys.argv[3]) if len(sys.argv) > 3 else 7
    files = sys.argv[4:] or DEFAULT
    server = subprocess.Popen([tool, "lsp", "--root", root], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE)
    ids = iter(range(1, 1 << 30))

    def send(method, params, request=False):
        message = {"jsonrpc": "2.0", "method": method, "params": params}
        if request:
            message["id"] = next(ids)
        body = json.dumps(message).encode()
        server.stdin.write(b"Content-Length: %d\r\n\r\n" % len(body) + body)
        server.stdin.flush()
        return message.get("id")

    replies = queue.Queue()
    published = [None]  # the server's CPU time when its last diagnostics arrived

    def read():  # always reading, so that the server never blocks on a full pipe
        while True:
            length = 0
            while True:
                line = server.stdout.readline()
                if not line:
                    replies.put(None)
                    return
                if line in (b"\r\n", b"\n"):
                    break
                if line.lower().startswith(b"content-length:"):
                    length = int(line.split(b":")[1])
            message = json.loads(server.stdout.read(length))
            if message.get("method") == "textDocument/publishDiagnostics":
                published[0] = cpu_ms(server.pid)
            if "id" in message:
                replies.put(message)

    threading.Thread(target=read, daemon=True).start()

    def wait(id):
        while True:
            message = replies.get()
            if message is None:
                sys.exit("the server ended")
            if message.get("id") == id:
                return message

    def uri(f):
        return "file://" + os.path.join(root, f)

    def probe():  # a request answered only after the pending change is checked
        return wait(send("textDocument/hover", {"textDocument": {"uri": uri(files[0])},
                                               "position": {"line": 0, "character": 0}}, True))

    wait(send("initialize", {"rootUri": "file://" + root, "capabilities": {}}, True))
    send("initialized", {})
    probe()
    texts = {}
    for f in files:
        with open(os.path.join(root, f), encoding="utf-8", errors="replace") as t:
            texts[f] = t.read()
        send("textDocument/didOpen", {"textDocument": {"uri": uri(f), "languageId": "xml",
                                                       "version": 1, "text": texts[f]}})
    probe()
    print(f"{'file':44} {'median ms':>9} {'min':>6} {'max':>6}")
    for f in files:
        times = []
        for run in range(runs):
            text = texts[f] + (" " if run % 2 == 0 else "")
            before = cpu_ms(server.pid)
            send("textDocument/didChange", {"textDocument": {"uri": uri(f), "version": run + 2},
                                            "contentChanges": [{"text": text}]})
            published[0] = None
            probe()
            answered = cpu_ms(server.pid)  # when nothing was published (a clean tree)
            times.append((published[0] or answered) - before)
        print(f"{f:44} {statistics.median(times):9.0f} {min(times):6.0f} {max(times):6.0f}")
    send("shutdown", {}, True)
    send("exit", {})
    server.wait()


if __name__ == "__main__":
    main()
