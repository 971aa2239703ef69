// The control program's page: the open panels, their task bar, the message boxes and the state of the connection.
import { render } from "preact";
import { useEffect, useMemo, useReducer } from "preact/hooks";
import { openSocket, type SocketState } from "../shared/socket";
import { BoxView } from "./box_view";
import { PanelView } from "./panel_view";
import type { PageMessage, ServerMessage, WindowInfo } from "./protocol";
import { applyMessage, startState, type PageState } from "./state";
import "./page.css";

// The program sends a beat twice a second.
const silentAfterMs = 2500;

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

function usePage(): [PageState, (message: PageMessage) => void] {
  const [state, dispatch] = useReducer(change, startState);
  const socket = useMemo(() => {
    let lastHeard = performance.now();
    window.setInterval(() => dispatch({ silent: performance.now() - lastHeard > silentAfterMs }), 500);
    return openSocket({
      onMessage: (message) => {
        lastHeard = performance.now();
        dispatch({ silent: false });
        dispatch({ message: message as ServerMessage });
      },
      onState: (socketState) => {
        lastHeard = performance.now();
        dispatch({ socket: socketState });
      },
    });
  }, []);
  return [state, socket.send];
}

function linkText(state: PageState): { text: string; kind: "good" | "wait" | "bad" } {
  if (state.socket === "open") {
    return state.silent ? { text: "Program silent", kind: "bad" } : { text: "Connected", kind: "good" };
  }
  return state.socket === "lost" ? { text: "Connection lost", kind: "bad" } : { text: "Connecting", kind: "wait" };
}

function TaskBar({ windows, front, send }: { windows: WindowInfo[]; front?: string; send: (message: PageMessage) => void }) {
  // In the order of their names' first appearance, so that buttons don't jump about.
  const ordered = [...windows].sort((a, b) => a.title.localeCompare(b.title));
  return (
    <nav class="task-bar" aria-label="Open panels">
      {ordered.map((window) => (
        <button
          type="button"
          key={window.name}
          data-task={window.name}
          class={window.state === "minimised" ? "task task-minimised" : "task"}
          aria-pressed={window.name === front}
          onClick={() => send({ type: "activate", panel: window.name })}
        >
          {window.title}
          {window.state === "minimised" && <span class="task-note"> (minimised)</span>}
        </button>
      ))}
    </nav>
  );
}

function Page() {
  const [state, send] = usePage();
  const shown = state.windows.filter((window) => window.state === "shown").reverse();
  const front = shown[0]?.name;
  const stale = state.socket !== "open" || state.silent;
  const link = linkText(state);
  const top = state.boxes[state.boxes.length - 1];

  useEffect(() => {
    document.title = state.program === "" ? "Cockpit" : state.program;
  }, [state.program]);

  return (
    <div class={stale ? "page stale" : "page"} data-stale={stale}>
      <header class="page-head">
        <h1>{state.program === "" ? "Cockpit" : state.program}</h1>
        <span class={`link link-${link.kind}`} role="status" data-link={link.kind}>
          {link.text}
        </span>
      </header>
      {stale && state.program !== "" && (
        <p class="banner" role="alert">
          {state.socket === "open"
            ? "The program does not answer. The values below may be old."
            : "The connection to the program is lost. The values below are old. Trying again …"}
        </p>
      )}
      <TaskBar windows={state.windows} front={front} send={send} />
      <main>
        {shown.map((window) => {
          const panel = state.panels.get(window.name);
          return panel && <PanelView key={window.name} window={window} panel={panel} front={window.name === front} send={send} />;
        })}
        {shown.length === 0 && (
          <p class="empty">
            {state.windows.length > 0 ? "All panels are minimised. Choose one above." : "No panel is open."}
          </p>
        )}
      </main>
      {top && <BoxView key={top.id} box={top} more={state.boxes.length - 1} send={send} />}
    </div>
  );
}

render(<Page />, document.getElementById("root")!);
