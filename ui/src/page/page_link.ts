// The page's link to the program: its state, kept up by the program's messages, and the way to send.
import { useEffect, useReducer, useRef } from "preact/hooks";
import { openSocket, type LiveSocket, type SocketState } from "../shared/socket";
import type { PageMessage, ServerMessage } from "./protocol";
import { applyMessage, startState, type PageState } from "./state";

// The program sends a beat twice a second.
const silentAfterMs = 2500;
const lookEveryMs = 250;

type Change = { message: ServerMessage } | { socket: SocketState } | { silent: boolean };

function change(state: PageState, what: Change): PageState {
  if ("message" in what) {
    return applyMessage(state, what.message);
  }
  if ("socket" in what) {
    return { ...state, socket: what.socket, silent: false };
  }
  return state.silent === what.silent ? state : { ...state, silent: what.silent };
}

export function usePageLink(): [PageState, (message: PageMessage) => void] {
  const [state, dispatch] = useReducer(change, startState);
  const socket = useRef<LiveSocket>();

  useEffect(() => {
    let lastHeard = performance.now();
    const heard = () => {
      lastHeard = performance.now();
      dispatch({ silent: false });
    };
    socket.current = openSocket({
      onMessage: (message) => {
        heard();
        dispatch({ message: message as ServerMessage });
      },
      onState: (socketState) => {
        heard();
        dispatch({ socket: socketState });
      },
    });
    const watch = window.setInterval(() => {
      if (performance.now() - lastHeard > silentAfterMs) {
        dispatch({ silent: true });
      }
    }, lookEveryMs);
    return () => {
      window.clearInterval(watch);
      socket.current?.close();
    };
  }, []);

  const send = useRef((message: PageMessage) => socket.current?.send(message));
  return [state, send.current];
}

export type LinkKind = "good" | "wait" | "bad";

export function linkOf(state: PageState): { kind: LinkKind; text: string } {
  if (state.socket === "open") {
    return state.silent ? { kind: "bad", text: "Program silent" } : { kind: "good", text: "Connected" };
  }
  return state.socket === "lost" ? { kind: "bad", text: "Connection lost" } : { kind: "wait", text: "Connecting" };
}

// Whether the values shown may be old.
export function isStale(state: PageState): boolean {
  return state.socket !== "open" || state.silent;
}
