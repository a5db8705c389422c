#!/usr/bin/env python3
"""delay.py LISTEN TARGET MS: passes connections on to a port of this computer, each way MS / 2 later."""
import asyncio
import sys


async def pump(reader, writer, delay):
    loop = asyncio.get_running_loop()
    queue = asyncio.Queue()

    async def send():
        while True:
            due, data = await queue.get()
            await asyncio.sleep(max(0, due - loop.time()))
            if not data:
                writer.close()
                return
            writer.write(data)
            await writer.drain()

    sender = asyncio.create_task(send())
    while True:
        try:
            data = await reader.read(1 << 18)
        except ConnectionError:
            data = b""
        await queue.put((loop.time() + delay, data))
        if not data:
            break
    await sender


async def main():
    listen, target, delay = int(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3]) / 2000

    async def accept(reader, writer):
        near, far = await asyncio.open_connection("127.0.0.1", target)
        await asyncio.gather(pump(reader, far, delay), pump(near, writer, delay),
                             return_exceptions=True)

    server = await asyncio.start_server(accept, "127.0.0.1", listen)
    await server.serve_forever()


asyncio.run(main())
