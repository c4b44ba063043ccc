"""The gateway between a web browser and the toolkit's display server, one for each session:

    browser_gateway.py FOLDER

Waits for the server's socket FOLDER/page, prints the address to open and relays its requests. The
address holds a secret that is made here and is known only to the reader of the output. The folder
is removed at the end.
"""

import asyncio
import errno
import hmac
import pathlib
import re
import secrets
import shutil
import signal
import sys

ADDRESS = "127.0.0.1"
PORTS = range(8085, 8285)
HEAD_BYTES = 16 * 1024
HEAD_SECONDS = 10
RELAYED_BYTES = 64 * 1024

REQUEST_LINE = re.compile(r"GET (/[!-~]*) HTTP/1\.1")
FIELD = re.compile(r"([!#$%&'*+.^_`|~0-9A-Za-z-]+):[ \t]*([\t -~\x80-\xff]*?)[ \t]*")
PAGES = ("", "broadway.js")
SOCKET = "socket"
WEBSOCKET_KEY = re.compile(r"[A-Za-z0-9+/]{22}==")

# The answer to every refused request, which reveals nothing about the program.
REFUSAL = b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"


class Refused(Exception):
    """The request is not answered by the server."""


class Gateway:
    """`page` is the path of the server's socket."""

    def __init__(self, page):
        self.page = page
        self.secret = secrets.token_urlsafe(32)
        self.port = None
        self.listener = None

    async def open(self):
        """Takes the first free port, and prints the address, as soon as the server answers."""
        (await self.connect())[1].close()
        for self.port in PORTS:
            try:
                self.listener = await asyncio.start_server(
                    self.serve, ADDRESS, self.port, limit=HEAD_BYTES
                )
            except OSError as error:
                if error.errno != errno.EADDRINUSE:
                    raise
            else:
                print(
                    f"Open http://{ADDRESS}:{self.port}/{self.secret}/ in a web browser.",
                    flush=True,
                )
                return
        sys.exit(f"No free port was found from {PORTS[0]} on.")

    async def connect(self):
        """A connection to the server; waits until there is one."""
        while True:
            try:
                return await asyncio.open_unix_connection(self.page)
            except (FileNotFoundError, ConnectionRefusedError):
                await asyncio.sleep(0.05)

    async def serve(self, reader, writer):
        try:
            try:
                async with asyncio.timeout(HEAD_SECONDS):
                    head = await reader.readuntil(b"\r\n\r\n")
                page, request = self.admit(head)
            except (Refused, TimeoutError, asyncio.LimitOverrunError):
                writer.write(REFUSAL)
                await writer.drain()
            else:
                await self.relay(request, reader if page == SOCKET else None, writer)
        except (OSError, asyncio.IncompleteReadError):
            pass  # the browser has gone
        finally:
            writer.close()

    def admit(self, head):
        """The requested page, and the request that the server gets instead of the browser's: only
        checked values reach the server."""
        path, fields = parse_head(head)
        # Another site can make its own host name resolve to this address (DNS rebinding), but it
        # cannot change the host name that the browser sends.
        host = fields.get("host")
        if host not in (f"{ADDRESS}:{self.port}", f"localhost:{self.port}"):
            raise Refused
        if fields.get("origin", f"http://{host}") != f"http://{host}":
            raise Refused
        secret, _, page = path[1:].partition("/")
        if not hmac.compare_digest(secret, self.secret):
            raise Refused
        forwarded = ["Host: " + host]
        if page == SOCKET:
            forwarded += upgrade_fields(fields)
        elif page not in PAGES:
            raise Refused
        return page, "\r\n".join((f"GET /{page} HTTP/1.1", *forwarded, "\r\n")).encode()

    async def relay(self, request, reader, writer):
        """Until either side ends. Without a reader the browser has nothing more to say."""
        page_reader, page_writer = await asyncio.open_unix_connection(self.page)
        copies = [asyncio.create_task(copy(page_reader, writer))]
        if reader:
            copies.append(asyncio.create_task(copy(reader, page_writer)))
        try:
            page_writer.write(request)
            await asyncio.wait(copies, return_when=asyncio.FIRST_COMPLETED)
        finally:
            for task in copies:
                task.cancel()
            page_writer.close()


def parse_head(head):
    """The path and the header fields, by their names in lower case."""
    first, *lines = head.decode("latin-1").removesuffix("\r\n\r\n").split("\r\n")
    requested = REQUEST_LINE.fullmatch(first)
    fields = {}
    for line in lines:
        field = FIELD.fullmatch(line)
        if not field or field[1].lower() in fields:
            raise Refused
        fields[field[1].lower()] = field[2]
    if not requested or "content-length" in fields or "transfer-encoding" in fields:
        raise Refused
    return requested[1], fields


def upgrade_fields(fields):
    """The fields of a browser's request for a WebSocket, which always names its origin."""
    key = fields.get("sec-websocket-key", "")
    if (
        "origin" not in fields
        or fields.get("upgrade", "").lower() != "websocket"
        or not WEBSOCKET_KEY.fullmatch(key)
    ):
        raise Refused
    return (
        "Upgrade: websocket",
        "Connection: Upgrade",
        "Sec-WebSocket-Version: 13",
        "Sec-WebSocket-Protocol: broadway",
        "Sec-WebSocket-Key: " + key,
    )


async def copy(reader, writer):
    try:
        while data := await reader.read(RELAYED_BYTES):
            writer.write(data)
            await writer.drain()
    except OSError:
        pass  # treated like the end of the stream


async def run(folder):
    """Waits for a signal."""
    loop = asyncio.get_running_loop()
    for number in (signal.SIGHUP, signal.SIGTERM):
        loop.add_signal_handler(number, asyncio.current_task().cancel)
    gateway = Gateway(folder / "page")
    await gateway.open()
    await loop.create_future()


if __name__ == "__main__":
    session = pathlib.Path(sys.argv[1])
    try:
        asyncio.run(run(session))
    except asyncio.CancelledError:
        pass
    finally:
        # The script does the same, unless it was killed.
        shutil.rmtree(session, ignore_errors=True)
