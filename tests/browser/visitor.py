"""Requests to the gateway, byte by byte."""

import socket

ANSWER_SECONDS = 10
WEBSOCKET = {
    "Upgrade": "websocket",
    "Connection": "Upgrade",
    "Sec-WebSocket-Version": "13",
    "Sec-WebSocket-Key": "MDEyMzQ1Njc4OWFiY2RlZg==",
    "Sec-WebSocket-Protocol": "broadway",
}


def head(path, fields, method="GET"):
    """A request. Fields whose value is None are left out."""
    lines = [
        f"{method} {path} HTTP/1.1",
        *(f"{name}: {value}" for name, value in fields.items() if value is not None),
    ]
    return "\r\n".join((*lines, "\r\n")).encode("latin-1")


def ask(port, request):
    """Returns the whole answer, or the head of one that has no end."""
    with socket.create_connection(("127.0.0.1", port), ANSWER_SECONDS) as connection:
        connection.sendall(request)
        answer = b""
        while data := connection.recv(65536):
            answer += data
            if answer.startswith(b"HTTP/1.1 101 ") and b"\r\n\r\n" in answer:
                break
        return answer
