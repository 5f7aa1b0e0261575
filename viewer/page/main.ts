import { everything } from '../model/filter';
import { followFragment } from './fragment';
import { Opener } from './Opener';
import { Shell } from './Shell';
import { Store } from '../views/store';
import { views } from './views';

const store = new Store({
  readings: [],
  profile: null,
  baseline: null,
  timechart: null,
  visible: null,
  filter: everything,
  search: '',
  place: -1,
  panel: 'flame',
  lanes: { folded: new Set(), hidden: new Set(), pinned: new Set() },
  cursor: null,
  run: null,
  mark: null,
});
followFragment(store);
const opener = new Opener(store);
new Shell(document.body, store, opener, views);
opener.openEmbedded(document);
