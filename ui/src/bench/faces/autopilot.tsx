import type { JSX } from "preact";

import { DoubleKnob, PushButton } from "../controls";
import { flagOf, numberOf, textOf } from "../store";
import { Row, Screen, Unit, UnitLamp } from "../unit";
import type { Face, FaceProps } from "./face";

const MODES = ["hdg", "nav", "apr", "rev", "alt"] as const;

function Autopilot({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const power = flagOf(values, "power");
  const feet = numberOf(values, "altitude").toFixed(0);
  return (
    <Unit label={`Autopilot, id ${instrument.id}`} title="Autopilot">
      <Row>
        <span class="lamp-block">
          <UnitLamp name="rol" caption="ROL" lit={power && flagOf(values, "rol")} />
          <UnitLamp name="gs" caption="GS" lit={power && flagOf(values, "gs")} />
          <UnitLamp name="vs" caption="VS" lit={power && flagOf(values, "vs")} />
          <UnitLamp name="trimUp" caption="PT ▲" lit={power && flagOf(values, "trimUp")} colour="amber" />
          <UnitLamp name="trimDown" caption="PT ▼" lit={power && flagOf(values, "trimDown")} colour="amber" />
          <UnitLamp name="alert" caption="ALERT" lit={power && flagOf(values, "alert")} colour="amber" />
        </span>
        <Screen name="display" caption="ALT / VS / BARO" text={textOf(values, "display")} ghost="88888" size="big" />
        <DoubleKnob
          bench={bench}
          outer={{ name: "coarse", label: "Altitude, coarse" }}
          inner={{ name: "fine", label: "Altitude, fine" }}
          value={`${feet} feet`}
        />
      </Row>
      <Row>
        <PushButton bench={bench} name="ap" caption="AP" lit={power && flagOf(values, "ap")} />
        {MODES.map((mode) => (
          <PushButton bench={bench} name={mode} caption={mode.toUpperCase()} lit={power && flagOf(values, mode)} />
        ))}
        <PushButton bench={bench} name="up" caption="▲" label="Climb" />
        <PushButton bench={bench} name="down" caption="▼" label="Descend" />
        <PushButton bench={bench} name="arm" caption="ARM" />
        <PushButton bench={bench} name="baro" caption="BARO" />
      </Row>
    </Unit>
  );
}

export const autopilotFace: Face = { component: Autopilot, size: () => "wide" };
