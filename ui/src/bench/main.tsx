import { render } from "preact";

render(<p>Virtual cockpit</p>, document.getElementById("root")!);
