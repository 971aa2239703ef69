// What the page knows, and how a message of the program changes it.
import type { SocketState } from "../shared/socket";
import type { Box, Control, LayoutNode, PanelDescription, Place, ServerMessage, WindowInfo } from "./protocol";

export interface PanelState {
  name: string;
  layout: LayoutNode;
  controls: ReadonlyMap<string, Control>;
}

export interface PageState {
  socket: SocketState;
  // The program's thread has not been heard of for a while although the socket is open.
  silent: boolean;
  program: string;
  windows: WindowInfo[]; // open ones, the front one last
  panels: ReadonlyMap<string, PanelState>;
  boxes: Box[];
}

export const startState: PageState = {
  socket: "connecting",
  silent: false,
  program: "",
  windows: [],
  panels: new Map(),
  boxes: [],
};

export function placeKey(place: Place): string {
  return place.index === undefined ? place.control : `${place.control}(${place.index})`;
}

function panelState(panel: PanelDescription): PanelState {
  return {
    name: panel.name,
    layout: panel.layout,
    controls: new Map(panel.controls.map((control) => [placeKey(control), control])),
  };
}

function windowOf(panel: PanelDescription): WindowInfo {
  return { name: panel.name, title: panel.title, state: panel.state, modal: panel.modal };
}

export function applyMessage(state: PageState, message: ServerMessage): PageState {
  switch (message.type) {
    case "snapshot":
      return {
        ...state,
        program: message.program,
        windows: message.panels.map(windowOf),
        panels: new Map(message.panels.map((panel) => [panel.name, panelState(panel)])),
        boxes: message.boxes,
      };
    case "panel": {
      const panels = new Map(state.panels);
      panels.set(message.panel.name, panelState(message.panel));
      return { ...state, panels };
    }
    case "windows":
      return { ...state, windows: message.windows };
    case "boxes":
      return { ...state, boxes: message.boxes };
    case "changes": {
      const panel = state.panels.get(message.panel);
      if (!panel) {
        return state;
      }
      const controls = new Map(panel.controls);
      for (const change of message.controls) {
        const key = placeKey(change);
        const known = controls.get(key);
        if (known) {
          controls.set(key, { ...known, ...change });
        }
      }
      const panels = new Map(state.panels);
      panels.set(message.panel, { ...panel, controls });
      const windows =
        message.title === undefined
          ? state.windows
          : state.windows.map((window) => (window.name === message.panel ? { ...window, title: message.title! } : window));
      return { ...state, panels, windows };
    }
    case "beat":
      return state;
  }
}
