// The portal page's half of the conversation: the plug-in calls c_addcomm with what the service
// said, and sends what c_addcomm gives back to the service.

// The demo's browser looks over the page's shoulder; in any other browser nobody does.
var stage = window.stage || {
  heard: function () {}, replied: function () {}, shows: function () {}
};

var TALK_ROWS = 10;
var LIVELY_ROUNDS = 20;

var STATES = {
  idle: ['idle', 'Not connected', 'Connect to reach your company\'s network from here.'],
  starting: ['busy', 'Connecting', 'The VPN service is being started.'],
  probing: ['busy', 'Looking for the service', 'Asking the VPN service on this computer.'],
  connected: ['good', 'Connected', 'Your company\'s network can be reached from this computer.'],
  there: ['good', 'Service is there', 'The VPN service runs on this computer.'],
  busy: ['bad', 'Already in use', 'The VPN service was started by another page or program.'],
  missing: ['bad', 'Not installed', 'Install the VPN service to connect.'],
  lost: ['bad', 'Connection lost', 'The VPN service has ended unexpectedly.'],
  disconnected: ['idle', 'Disconnected', 'The connection was ended from this page.']
};

var state = 'idle';
var commands = [];
var rounds = 0;
var received = 0;
var sent = 0;
var messages = 0;
var characters = 0;
var talk = [];
var refreshing = null;
var started = Date.now();

function byId(id) { return document.getElementById(id); }

function amount(bytes) {
  if (bytes < 1000) return bytes + ' B';
  if (bytes < 1000000) return (bytes / 1000).toFixed(1) + ' kB';
  return (bytes / 1000000).toFixed(1) + ' MB';
}

function enter(name) {
  if (name === state) return;
  state = name;
  byId('state').setAttribute('data-tone', STATES[name][0]);
  byId('state-name').textContent = STATES[name][1];
  byId('state-text').textContent = STATES[name][2];
  enableButtons();
  stage.shows(STATES[name][1]);
}

function enableButtons() {
  var embedded = byId('plug-in').firstChild !== null;
  var talking = state === 'connected';
  byId('connect').disabled = byId('probe').disabled = embedded;
  byId('info').disabled = !embedded;
  byId('logging-on').disabled = byId('logging-off').disabled = !talking;
  byId('disconnect').disabled = !embedded;
}

function note(direction, text) {
  talk.unshift([((Date.now() - started) / 1000).toFixed(2) + ' s',
                direction === 'from-page' ? 'page to service' : 'service to page', text]);
  talk.length = Math.min(talk.length, TALK_ROWS);
  messages += 1;
  characters += text.length;
  // Drawing each message would take longer than relaying it.
  if (refreshing === null) refreshing = setTimeout(refresh, 60);
}

function refresh() {
  clearTimeout(refreshing);
  refreshing = null;
  byId('received').textContent = amount(received);
  byId('sent').textContent = amount(sent);
  byId('messages').textContent = messages;
  byId('characters').textContent = amount(characters);
  byId('silence').style.display = talk.length === 0 ? '' : 'none';
  var rows = byId('talk');
  rows.innerHTML = '';
  talk.forEach(function (line) {
    var row = rows.insertRow(-1);
    line.forEach(function (content) { row.insertCell(-1).textContent = content; });
    row.cells[1].className = line[1] === 'page to service' ? 'from-page' : 'from-service';
  });
}

// What the service said, taken to heart; gives back what to ask when no button was pressed.
function understand(text) {
  var words = text.split(',');
  if (text === 'ssldrop') {
    enter('lost');
    return '';
  }
  if (words[0] === '&sslsetstatus') {
    if (words[2] === 'disconnectedwitherror') { enter('busy'); return 'INFO'; }
    if (words[2] === 'connecting') return 'STATUS';
    if (words[2] === 'connected') { enter('connected'); return 'TRAFFIC'; }
    if (words[2] === 'disconnected') { setTimeout(takeOut, 0); return 'WAIT'; }
  }
  if (words[0] === '&ssltraffic') {
    received = +words[2];
    sent = +words[3];
    rounds += 1;
    return rounds < LIVELY_ROUNDS ? 'TRAFFIC' : 'WAIT';
  }
  if (words[0] === '&sslinfo' && state === 'probing') { enter('there'); return 'TRAFFIC'; }
  if (words[0] === '&sslinfo') return 'STATUS';
  return 'TRAFFIC';
}

function c_addcomm(text) {
  stage.heard('c_addcomm(\'' + text + '\')');
  note('from-service', text);
  var usual = understand(text);
  var reply = commands.length > 0 ? commands.shift() : usual;
  if (reply !== '') note('from-page', reply);
  stage.replied(reply);
  return reply;
}

function VPNNotInstalled() {
  stage.heard('VPNNotInstalled()');
  enter('missing');
}

function embed(parameters) {
  var plugIn = document.createElement('embed');
  plugIn.setAttribute('type', 'application/x-zerva-sslvpn');
  plugIn.setAttribute('width', '1');
  plugIn.setAttribute('height', '1');
  Object.keys(parameters).forEach(function (name) {
    plugIn.setAttribute(name, parameters[name]);
  });
  rounds = 0;
  byId('plug-in').appendChild(plugIn);
  enableButtons();
}

function takeOut() {
  byId('plug-in').innerHTML = '';
  enter('disconnected');
}

function connect() {
  enter('starting');
  embed({
    user: 'ada', session: '4f1c9a', gateway: 'vpn.example.test',
    hostrooturl: location.origin, signature: 'unsigned', nevourl: '/nevo', nevosize: '0',
    last_param: '1'
  });
}

function probe() {
  enter('probing');
  embed({ _probevpn: '1' });
}

function readInfo() {
  var info = byId('plug-in').firstChild.info;
  byId('state-text').textContent = 'info: ' + info;
  stage.shows('info is ' + info);
}

function disconnect() {
  if (state === 'connected') commands.push('DISCONNECT');
  else takeOut();
}

byId('connect').onclick = connect;
byId('probe').onclick = probe;
byId('info').onclick = readInfo;
byId('logging-on').onclick = function () { commands.push('LOGGING,1'); };
byId('logging-off').onclick = function () { commands.push('LOGGING,0'); };
byId('disconnect').onclick = disconnect;
enableButtons();

if (location.search === '?connect') connect();
if (location.search === '?probe') probe();
