// Stands in for the program behind the page: serves the page's files and speaks its protocol as a test tells it to.
import { bundle } from "../../ui/build.mjs";

export const address = "http://127.0.0.1:8790/";

const policy =
  "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; font-src 'self'; " +
  "connect-src 'self' ws://127.0.0.1:8790; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

let files;

export class ScriptedProgram {
  static async behind(page) {
    files ??= await bundle("page", "Cockpit");
    const program = new ScriptedProgram(page);
    await page.route(`${address}**`, (route) => {
      const file = files.find((each) => each.path === new URL(route.request().url()).pathname);
      return file
        ? route.fulfill({ contentType: file.type, body: file.text, headers: { "Content-Security-Policy": policy } })
        : route.fulfill({ status: 404 });
    });
    await page.routeWebSocket(/\/socket$/, (socket) => program.#opened(socket));
    return program;
  }

  constructor(page) {
    this.page = page;
    this.heard = []; // the page's messages
    this.answers = true; // whether new connections are taken
    this.snapshot = { type: "snapshot", program: "Control Program", panels: [], boxes: [] };
    this.#beat();
  }

  tell(message) {
    this.socket?.send(JSON.stringify(message));
  }

  // Panels open in this order, the front one last.
  show(...panels) {
    this.snapshot.panels = panels;
    this.tell(this.snapshot);
  }

  change(panel, ...controls) {
    this.tell({ type: "changes", panel, controls });
  }

  boxes(...boxes) {
    this.snapshot.boxes = boxes;
    this.tell({ type: "boxes", boxes });
  }

  hangUp() {
    this.socket?.close();
    this.socket = undefined;
  }

  stopBeating() {
    clearInterval(this.beats);
  }

  #beat() {
    let count = 0;
    this.beats = setInterval(() => this.tell({ type: "beat", count: ++count }), 500);
    this.beats.unref();
  }

  #opened(socket) {
    if (!this.answers) {
      socket.close();
      return;
    }
    this.socket = socket;
    socket.onMessage((text) => this.heard.push(JSON.parse(text)));
    this.tell(this.snapshot);
  }
}

// A control with what all controls have.
export function control(kind, name, more = {}) {
  return {
    kind, control: name, caption: "", text: "", toolTip: "", value: 0, visible: true, enabled: true, colour: -1, ...more,
  };
}

export function panel(name, title, layout, controls, more = {}) {
  return { name, title, state: "shown", modal: false, layout, controls, ...more };
}

const node = (item) => (typeof item === "string" ? { kind: "control", control: item } : item);
export const column = (...children) => ({ kind: "column", caption: "", children: children.map(node) });
export const row = (...children) => ({ kind: "row", caption: "", children: children.map(node) });
export const frame = (caption, ...children) => ({ kind: "frame", caption, children: children.map(node) });
export const board = (columns, ...children) => ({ kind: "board", caption: "", columns, children });
export const tabs = (...frames) => ({ kind: "tabs", caption: "", children: frames });
