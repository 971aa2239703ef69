import { render } from "preact";

import "./bench.css";
import "./controls.css";
import "./instruments.css";
import "./switchboard.css";
import "./switchboard_controls.css";
import "./yoke.css";
import { openSocket } from "../shared/socket";
import { Cockpit } from "./cockpit";
import type { Message } from "./protocol";
import { Store } from "./store";

// The bench speaks at least once a second; a silent connection is a lost one, even if it has not closed.
const SILENCE_MS = 3000;

const store = new Store();
let silence: number | undefined;

function heard(): void {
  window.clearTimeout(silence);
  store.setConnected(true);
  silence = window.setTimeout(() => store.setConnected(false), SILENCE_MS);
}

const socket = openSocket({
  onMessage(message) {
    heard();
    store.take(message as Message);
  },
  onState(state) {
    if (state === "open") {
      heard();
    } else {
      window.clearTimeout(silence);
      store.setConnected(false);
    }
  },
});

render(<Cockpit store={store} command={(line) => socket.sendText(line)} />, document.getElementById("root")!);
