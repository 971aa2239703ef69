import type { JSX } from "preact";

import { PushButton } from "../controls";
import { textOf } from "../store";
import { Row, Screen, Unit } from "../unit";
import type { Face, FaceProps } from "./face";

function CessnaClock({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  return (
    <Unit label={`Clock, id ${instrument.id}`} title="Clock · OAT · Volts">
      <Row>
        <Screen name="upper" caption="OAT / VOLTS" text={textOf(values, "upper")} ghost="888.8 8" size="big" />
        <PushButton bench={bench} name="upper" caption="OAT" label="Next reading of the upper display" />
      </Row>
      <Row>
        <Screen name="lower" caption={textOf(values, "lowerMode")} text={textOf(values, "lower")} ghost="88:88:88" size="big" />
        <PushButton bench={bench} name="lower" caption="SELECT" label="Next time of the lower display" />
      </Row>
    </Unit>
  );
}

export const cessnaClockFace: Face = { component: CessnaClock, size: () => "small" };
