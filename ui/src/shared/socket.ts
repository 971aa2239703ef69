// A socket to the program that mends itself: it tries again after a loss, soon at first and every two seconds at last.

export type SocketState = "connecting" | "open" | "lost";

export interface LiveSocket {
  send(message: object): void;
  sendText(text: string): void;
  close(): void;
}

const firstRetryMs = 250;
const longestRetryMs = 2000;

export function openSocket(handlers: {
  onMessage(message: unknown): void;
  onState(state: SocketState): void;
}): LiveSocket {
  let socket: WebSocket | undefined;
  let retryMs = firstRetryMs;
  let timer: number | undefined;
  let closed = false;

  function connect() {
    socket = new WebSocket(`ws://${location.host}/socket`);
    socket.onopen = () => {
      retryMs = firstRetryMs;
      handlers.onState("open");
    };
    socket.onmessage = (event) => {
      if (typeof event.data === "string") {
        handlers.onMessage(JSON.parse(event.data));
      }
    };
    socket.onclose = () => {
      if (closed) {
        return;
      }
      handlers.onState("lost");
      timer = window.setTimeout(connect, retryMs);
      retryMs = Math.min(retryMs * 2, longestRetryMs);
    };
  }

  function sendText(text: string) {
    if (socket?.readyState === WebSocket.OPEN) {
      socket.send(text);
    }
  }

  handlers.onState("connecting");
  connect();
  return {
    send(message) {
      sendText(JSON.stringify(message));
    },
    sendText,
    close() {
      closed = true;
      window.clearTimeout(timer);
      socket?.close();
    },
  };
}
