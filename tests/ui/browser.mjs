// Debian's Chromium, driven through the page's own npm modules.
import { createRequire } from "node:module";
import { fileURLToPath } from "node:url";

const fromPage = createRequire(fileURLToPath(new URL("../../ui/package.json", import.meta.url)));
const { chromium } = fromPage("playwright-core");

export const sizes = {
  desktop: { width: 1920, height: 1080 },
  laptop: { width: 1024, height: 768 },
  tablet: { width: 820, height: 1180 },
};

export function openBrowser() {
  return chromium.launch({
    executablePath: "/usr/bin/chromium",
    args: [
      "--no-sandbox",
      "--disable-gpu",
      "--disable-quic",
      "--no-first-run",
      "--disable-background-networking",
      "--disable-component-update",
      "--disable-sync",
    ],
  });
}

// A page that remembers what went wrong in it.
export async function openPage(browser, size = sizes.laptop, options = {}) {
  const context = await browser.newContext({ viewport: size, ...options });
  const page = await context.newPage();
  page.troubles = [];
  page.on("pageerror", (error) => page.troubles.push(String(error)));
  page.on("console", (message) => {
    // A lost connection is told by the browser too.
    if (message.type() === "error" && !/ERR_CONNECTION|WebSocket connection/.test(message.text())) {
      page.troubles.push(message.text());
    }
  });
  return page;
}
