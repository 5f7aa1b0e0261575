/** The views of the page, in the order of their tabs. */

import { LanesView } from '../views/LanesView';
import { RulerView } from '../views/RulerView';
import { SpanView } from '../views/SpanView';
import type { View } from '../views/View';

export const views: readonly View[] = [new RulerView(), new LanesView(), new SpanView()];
